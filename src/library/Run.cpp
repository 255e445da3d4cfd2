#include "library/Run.hpp"

#include <cmath>
#include <utility>

#include "case/implausible_case.hpp"
#include "case/read_case.hpp"
#include "fields/make_flow.hpp"
#include "library/case_of_arrays.hpp"
#include "library/state_bytes.hpp"
#include "utils/number_text.hpp"

namespace quillmere {

namespace {

AreaLoss area_loss_of(const cases::Mesh& mesh) {
  AreaLoss loss;
  for (cases::Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const cases::CellGeometry geometry = mesh.geometry_of(cell);
    loss.add({geometry.center.x, geometry.center.y}, geometry.area, mesh.accurate_area_of(cell));
  }
  return loss;
}

}  // namespace

Simulation::Run::Run(const Case& given, const Options& options)
    : case_(case_of_arrays(given, warnings_)) {
  cases::DataFile names;
  names.cell_files.set(cases::key("model/conditions/friction"), "Manning coefficients");
  begin(names, area_loss_of(case_.mesh), options);
}

Simulation::Run::Run(const std::string& data_file, const Options& options) {
  cases::ReadCase read = cases::read_case(data_file, cases::NoListeners().listeners(), warnings_);
  case_ = std::move(read.contents);
  begin(read.data, read.area_loss, options);
}

void Simulation::Run::begin(const cases::DataFile& data, const AreaLoss& area_loss,
                            const Options& options) {
  fields::FlowRequest request;
  request.most_threads = options.threads;
  flow_ = fields::make_tables_flow(case_, warnings_, request);
  cases::warn_of_implausible_parameters(case_, warnings_);
  cases::warn_of_implausible_fields(cases::implausible_fields(case_), case_, data, area_loss,
                                    warnings_);
  clock_ = fields::clock_at_start(case_, *flow_);
}

const fields::Clock& Simulation::Run::clock() {
  if (std::exchange(has_other_water_, false)) clock_.dt = case_.cfl * flow_->stable_step(clock_.t);
  return clock_;
}

void Simulation::Run::step() {
  if (is_complete()) {
    throw Error("The simulation has reached its end at t = " + utils::number_text(clock_.t) +
                " s: there is no further step.");
  }
  if (clock().has_collapsed()) {
    throw Error("dt too small! At t = " + utils::number_text(clock_.t) + " s it is " +
                utils::number_text(clock_.dt) + " s.");
  }
  fields::advance(*flow_, case_, clock_);
  has_last_step_ = true;
  if (std::isnan(clock_.t)) throw Error("The simulated time is not a number any more.");
}

cases::Number Simulation::Run::cell_at(double x, double y) {
  if (!locator_) locator_ = std::make_unique<PointLocator>(case_.mesh);
  return locator_->cell_at(x, y);
}

double Simulation::Run::inflow(int boundary) const {
  return has_last_step_ ? flow_->boundary_inflow(boundary).water : 0.0;
}

void Simulation::Run::set_water(std::span<const cases::Number> cells,
                                std::span<const physics::InitialWater> water) {
  note_maxima();
  flow_->engine().set_water(cells, water);
  has_other_water_ = true;
}

void Simulation::Run::set_rain(std::span<const cases::Number> cells,
                               std::span<const double> intensities) {
  flow_->engine().impose_rain(cells, intensities);
}

void Simulation::Run::set_boundary(int boundary, double value) {
  flow_->engine().impose_on_boundary(boundary, value);
}

void Simulation::Run::keep_maxima(double arrival_depth) {
  if (clock_.steps > 0)
    throw Error("Maxima are kept from the start: ask for them before the steps.");
  flow_->keep_maxima(arrival_depth);
}

State Simulation::Run::save() {
  note_maxima();
  engine::State state;
  flow_->save(state);
  return bytes_of({clock(), state});
}

void Simulation::Run::load(const State& bytes) {
  const SavedState state = state_of(bytes);
  engine::State present;
  flow_->save(present);
  if (state.flow.peak_depth.empty() != present.peak_depth.empty()) {
    throw Error(present.peak_depth.empty()
                    ? "The state holds maxima of the flow, which this simulation does not keep."
                    : "The state holds no maxima of the flow, which this simulation keeps.");
  }
  if (!engine::fits(state.flow, present, case_)) {
    throw Error("The state is that of another case.");
  }
  flow_->load(state.flow);
  clock_ = state.clock;
  has_other_water_ = has_last_step_ = false;
}

}  // namespace quillmere
