// The last look of a run, complete or not, at what it has written: depths below zero, soils that
// gave out water, films that raced, and values that are no numbers.
#include <cmath>
#include <string>
#include <string_view>

#include "domain/Domain.hpp"
#include "utils/cell_place.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

using cases::Number;
using fields::ColumnSurvey;
using fields::FieldInfo;

std::string named_place(const fields::Ground& ground, Number cell) {
  const physics::SpacePoint center = ground.geometry_of(cell).center;
  return "cell " + utils::cell_place(cell, center.x, center.y);
}

std::string at_time(double t) { return " at t = " + utils::number_text(t) + " s"; }

std::string percent(double share) {
  constexpr int digits = 3;
  return utils::number_text(100.0 * share, digits) + " %";
}

/// What to do about depths below zero and what comes of them; a sentence with a blank before it.
std::string advice(const cases::Case& contents) {
  if (contents.scheme != cases::Scheme::lhllc) return "";
  return " The \"flux scheme\" \"" +
         std::string(cases::positive_scheme(contents.has_sediments).name) +
         "\" keeps depths at or above zero.";
}

std::string seen_first(const fields::Ground& ground, const Sighting& first) {
  return "seen first" + at_time(first.t) + " in " + named_place(ground, first.cell);
}

/// `more` goes between the last figure and the end of the sentence.
void warn_below_zero(const fields::Ground& ground, const FieldInfo& field,
                     const ColumnSurvey& found, double t, const std::string& more) {
  if (found.below_zero == 0) return;
  utils::warn(
      "the " + std::string(field.quantity) + " of " + utils::counted(found.below_zero, "cell") +
      " is below zero" + at_time(t) + ": " + utils::number_text(found.deficit.value()) +
      " m3 are missing, while the other cells hold " + utils::number_text(found.held.value()) +
      " m3; it is " + utils::number_text(found.lowest) + " m in " +
      named_place(ground, found.lowest_cell) + more);
}

void warn_not_finite(const fields::Ground& ground, const FieldInfo& field,
                     const ColumnSurvey& found, double t) {
  if (found.not_finite == 0) return;
  utils::warn("the " + std::string(field.quantity) + " of " +
              utils::counted(found.not_finite, "cell") + " is not a number" + at_time(t) +
              ", the first of them in " + named_place(ground, found.not_finite_cell) + ".");
}

/// Whether both are components of one vector.
bool is_same_quantity(const FieldInfo& a, const FieldInfo& b) {
  return std::string_view(a.quantity) == b.quantity;
}

}  // namespace

void Domain::warn_of_much_below_zero() {
  constexpr double much = 1e-3;
  const ColumnSurvey& depths = looks_->depths();
  if (has_warned_of_much_ || !(depths.share() > much)) return;
  has_warned_of_much_ = true;
  end_progress();
  utils::warn("at t = " + utils::number_text(clock_.t) + " s " + percent(depths.share()) +
              " of the water is missing in cells whose depth is below zero; " +
              seen_first(*ground_, looks_->first_below_zero()) + "." + advice(case_));
}

void Domain::warn_of_strange_water() const {
  if (looks_->first_given_out().is_any()) {
    utils::warn("soils gave out " + utils::number_text(looks_->given_out()) +
                " m3 of water or more, " + seen_first(*ground_, looks_->first_given_out()) + "." +
                advice(case_));
  }
  const Sighting& film = looks_->first_film();
  if (!film.is_any()) return;
  const fields::CellState& state = looks_->state_of_first_film();
  utils::warn("water ran at " + utils::number_text(std::hypot(state.qx, state.qy) / state.h) +
              " m/s in a depth of " + utils::number_text(state.h) +
              " m, which is beyond a Froude number of " +
              utils::number_text(physics::largest_froude) + ", " + seen_first(*ground_, film) +
              "; at most " + utils::counted(looks_->most_films(), "cell") + " at one time did so.");
}

void Domain::warn_of_lost_results() {
  warn_of_lost_states();
  looks_->look();
  const auto about_depths = [&](const ColumnSurvey& survey) {
    const Sighting& first = looks_->first_below_zero();
    if (!first.is_any()) return std::string(".");
    return "; " + percent(survey.share()) + " of the water is missing, " +
           seen_first(*ground_, first) + "." + advice(case_);
  };
  const auto seen = flow_->looks(case_);
  const auto& table = fields::field_table;
  for (std::size_t k = 0; k < table.size(); ++k) {
    if (fields::is_of_maxima(table[k])) continue;  // what has not been is no number there
    const std::size_t first = k;
    while (k + 1 < table.size() && is_same_quantity(table[k], table[k + 1])) ++k;
    const ColumnSurvey survey = seen->column(table[first].field, static_cast<int>(k - first) + 1);
    if (table[k].is_depth) {
      warn_below_zero(*ground_, table[k], survey, clock_.t,
                      table[k].field == fields::Field::depth ? about_depths(survey) : ".");
    }
    // What belongs to a state that is no number has been told of.
    if (!table[k].is_of_state) warn_not_finite(*ground_, table[k], survey, clock_.t);
  }
  warn_of_strange_water();
}
