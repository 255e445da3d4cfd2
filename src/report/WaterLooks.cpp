#include "report/WaterLooks.hpp"

#include <algorithm>
#include <numeric>
#include <variant>

#include "physics/flow_extremes.hpp"

using cases::at;
using cases::Number;
using fields::Field;

WaterLooks::WaterLooks(const fields::Flow& flow, const cases::Case& contents,
                       const fields::Clock& clock)
    : flow_(flow), case_(contents), clock_(clock) {
  const std::size_t n_cells = at(contents.mesh.n_cells());
  for (std::vector<double>* const column : {&h_, &qx_, &qy_}) column->resize(n_cells);
  if (!contents.fields.soil.empty()) {
    infiltrated_.resize(n_cells);
    infiltrated_before_.resize(n_cells);
    flow_.read(Field::infiltrated_depth, infiltrated_before_);
    for (const cases::Soil& soil : contents.soils) {
      recovers_.push_back(std::visit([](const auto& of) { return of.kr > 0.0; }, soil.parameters));
    }
  }
  look();
}

void WaterLooks::look() {
  if (clock_.steps == looked_at_) return;
  looked_at_ = clock_.steps;
  ++looks_;
  flow_.read(Field::depth, h_);
  look_for_depths_below_zero();
  look_for_films();
  if (!infiltrated_.empty()) look_at_soils();
}

double WaterLooks::area(std::size_t cell) {
  if (areas_.empty()) areas_ = case_.mesh.areas();
  return areas_[cell];
}

void WaterLooks::look_for_depths_below_zero() {
  depths_ = {};
  const double lowest = std::accumulate(h_.begin(), h_.end(), 0.0, [](double a, double b) {
    return b < a ? b : a;  // a branch-free minimum that passes over what is no number
  });
  if (!(lowest < -ColumnSurvey::rounding)) return;
  for (std::size_t i = 0; i < h_.size(); ++i) depths_.add(static_cast<int>(i), h_[i], area(i));
  if (!first_below_zero_.is_any()) first_below_zero_ = {clock_.t, depths_.lowest_cell};
}

void WaterLooks::look_for_films() {
  flow_.read(Field::discharge_x, qx_);
  flow_.read(Field::discharge_y, qy_);
  const double zero_depth = case_.zero_depth;
  long films = 0;
  for (std::size_t i = 0; i < h_.size(); ++i) {
    films += physics::is_film(h_[i], qx_[i], qy_[i], zero_depth) ? 1 : 0;
  }
  if (films == 0) return;
  most_films_ = std::max(most_films_, films);
  if (first_film_.is_any()) return;
  physics::FlowRecord fastest;
  for (std::size_t i = 0; i < h_.size(); ++i) {
    const auto extremes =
        physics::extremes_of_state(h_[i], qx_[i], qy_[i], physics::depth_terms(h_[i], zero_depth));
    physics::note(fastest, extremes.speed_squared_per_depth, static_cast<int>(i));
  }
  if (fastest.cell < 0) return;  // its discharge is infinite, which is told elsewhere
  first_film_ = {clock_.t, fastest.cell};
  state_of_first_film_ = flow_.state(fastest.cell);
}

void WaterLooks::look_at_soils() {
  flow_.read(Field::infiltrated_depth, infiltrated_);
  double most = 0.0;
  Number cell_of_most = -1;
  for (std::size_t i = 0; i < infiltrated_.size(); ++i) {
    const int soil = case_.fields.soil[i];
    if (soil < 0) continue;
    const double before = infiltrated_before_[i];
    const double fallen = (recovers_[at(soil)] ? std::min(before, 0.0) : before) - infiltrated_[i];
    if (!(fallen > ColumnSurvey::rounding)) continue;
    given_out_.add(fallen * area(i));
    if (fallen > most) {
      most = fallen;
      cell_of_most = static_cast<Number>(i);
    }
  }
  infiltrated_before_.swap(infiltrated_);
  if (!first_given_out_.is_any()) first_given_out_ = {clock_.t, cell_of_most};
}
