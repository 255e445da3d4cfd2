// The last look of a run, complete or not, at what it has written: depths below zero, and values
// that are no numbers.
#include <array>
#include <string>

#include "domain/Domain.hpp"
#include "domain/column_survey.hpp"
#include "globals/Globals.hpp"
#include "utils/cell_place.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

/// A column of the results; a depth is never below zero.
struct WrittenColumn {
  const char* name;
  bool is_depth;
  double (*of_cell)(const ComputationalCell& cell);
  ColumnSurvey survey = {};
};

std::string named_place(const ComputationalCell& cell) {
  return "cell " + utils::cell_place(cell.id, cell.center.x, cell.center.y);
}

std::string at_present() { return " at t = " + utils::number_text(Globals::t) + " s"; }

void warn_below_zero(const PhysicalModel& model, const WrittenColumn& column) {
  const ColumnSurvey& found = column.survey;
  if (found.below_zero == 0) return;
  const ComputationalCell& lowest = *model.cells[static_cast<std::size_t>(found.lowest_cell)];
  utils::warn("the " + std::string(column.name) + " of " +
              utils::counted(found.below_zero, "cell") + " is below zero" + at_present() + ": " +
              utils::number_text(found.deficit) + " m3 are missing, while the other cells hold " +
              utils::number_text(found.held) + " m3; it is " + utils::number_text(found.lowest) +
              " m in " + named_place(lowest) + ".");
}

void warn_not_finite(const PhysicalModel& model, const WrittenColumn& column) {
  const ColumnSurvey& found = column.survey;
  if (found.not_finite == 0) return;
  const ComputationalCell& first = *model.cells[static_cast<std::size_t>(found.not_finite_cell)];
  utils::warn("the " + std::string(column.name) + " of " +
              utils::counted(found.not_finite, "cell") + " is not a number" + at_present() +
              ", the first of them in " + named_place(first) + ".");
}

}  // namespace

void Domain::warn_of_lost_results() const {
  warn_of_lost_states();
  using Cell = ComputationalCell;
  std::array<WrittenColumn, 6> columns{
      {{"depth", true, [](const Cell& cell) { return cell.U.h; }},
       {"largest depth", true, [](const Cell& cell) { return cell.max_values.h; }},
       {"infiltrated depth", true, [](const Cell& cell) { return cell.param.infiltrated_depth; }},
       {"bed level", false, [](const Cell& cell) { return cell.bed_level; }},
       {"sediment thickness", true, [](const Cell& cell) { return cell.U.hs; }},
       {"sediment discharge", false, [](const Cell& cell) { return cell.U.qsx + cell.U.qsy; }}}};
  model->publish();
  for (const auto& cell : model->cells) {
    for (WrittenColumn& column : columns) {
      column.survey.add(cell->id, column.of_cell(*cell), cell->area);
    }
  }
  for (const WrittenColumn& column : columns) {
    if (column.is_depth) warn_below_zero(*model, column);
    // A depth that is no number has been told of as a state.
    if (&column != &columns.front()) warn_not_finite(*model, column);
  }
}
