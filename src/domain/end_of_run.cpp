// The last look of a run, complete or not, at what it has written: depths below zero, and values
// that are no numbers.
#include <string>
#include <string_view>

#include "domain/Domain.hpp"
#include "domain/column_survey.hpp"
#include "utils/cell_place.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

using cases::at;
using cases::Number;
using fields::FieldInfo;

std::string named_place(const cases::Mesh& mesh, Number cell) {
  const physics::SpacePoint center = mesh.center_of(cell);
  return "cell " + utils::cell_place(cell, center.x, center.y);
}

std::string at_time(double t) { return " at t = " + utils::number_text(t) + " s"; }

void warn_below_zero(const cases::Mesh& mesh, const FieldInfo& field, const ColumnSurvey& found,
                     double t) {
  if (found.below_zero == 0) return;
  utils::warn("the " + std::string(field.quantity) + " of " +
              utils::counted(found.below_zero, "cell") + " is below zero" + at_time(t) + ": " +
              utils::number_text(found.deficit) + " m3 are missing, while the other cells hold " +
              utils::number_text(found.held) + " m3; it is " + utils::number_text(found.lowest) +
              " m in " + named_place(mesh, found.lowest_cell) + ".");
}

void warn_not_finite(const cases::Mesh& mesh, const FieldInfo& field, const ColumnSurvey& found,
                     double t) {
  if (found.not_finite == 0) return;
  utils::warn("the " + std::string(field.quantity) + " of " +
              utils::counted(found.not_finite, "cell") + " is not a number" + at_time(t) +
              ", the first of them in " + named_place(mesh, found.not_finite_cell) + ".");
}

/// Whether both are components of one vector.
bool is_same_quantity(const FieldInfo& a, const FieldInfo& b) {
  return std::string_view(a.quantity) == b.quantity;
}

}  // namespace

void Domain::warn_of_lost_results() const {
  warn_of_lost_states();
  const std::size_t n_cells = at(case_.mesh.n_cells());
  std::vector<double> areas, values(n_cells), component(n_cells);
  areas.reserve(n_cells);
  for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    areas.push_back(case_.mesh.geometry_of(cell).area);
  }
  const auto& table = fields::field_table;
  for (std::size_t k = 0; k < table.size(); ++k) {
    flow_->read(table[k].field, values);
    for (; k + 1 < table.size() && is_same_quantity(table[k], table[k + 1]); ++k) {
      flow_->read(table[k + 1].field, component);
      for (std::size_t i = 0; i < n_cells; ++i) values[i] += component[i];
    }
    ColumnSurvey survey;
    for (std::size_t i = 0; i < n_cells; ++i) {
      survey.add(static_cast<Number>(i), values[i], areas[i]);
    }
    if (table[k].is_depth) warn_below_zero(case_.mesh, table[k], survey, clock_.t);
    // What belongs to a state that is no number has been told of.
    if (!table[k].is_of_state) warn_not_finite(case_.mesh, table[k], survey, clock_.t);
  }
}
