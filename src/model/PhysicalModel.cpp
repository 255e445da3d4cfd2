#include "model/PhysicalModel.hpp"

#include <cmath>
#include <iostream>
#include <string>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "model/StepWatch.hpp"
#include "model/engine_bridge.hpp"
#include "physics/stable_step.hpp"
#include "utils/stop.hpp"

PhysicalModel::PhysicalModel() = default;
PhysicalModel::~PhysicalModel() = default;

void PhysicalModel::compile() { compile(::engine::threads_for(n_cells)); }

void PhysicalModel::compile(int threads, int cells_per_patch) {
  engine = CompiledModel::compile(*this, threads, cells_per_patch);
  if (!engine || engine->tables().threads() == threads) return;
  utils::warn("the system gives " + std::to_string(engine->tables().threads()) + " of " +
              std::to_string(threads) + " threads: the run is slower, its results stay the same.");
}

void PhysicalModel::publish() {
  if (!engine) return;
  Handoff::wait_for_copies();
  engine->publish();
}

void PhysicalModel::publish(const std::vector<int>& cells_wanted) {
  if (!engine) return;
  Handoff::wait_for_copies();
  engine->publish(cells_wanted);
}

void PhysicalModel::build_cell(int, const std::vector<const MeshNode*>&) {}
void PhysicalModel::setSedimentsParam(utils::TextScanner&) {}
void PhysicalModel::setSedimentsLevel(utils::TextScanner&) {}
void PhysicalModel::setBankFailureParam(utils::TextScanner&) {}
void PhysicalModel::setBankFailureFixedBanks(utils::TextScanner&) {}
void PhysicalModel::build_interface(int, int, int, int, const MeshNode&, const MeshNode&, int,
                                    double, const std::string&) {}
void PhysicalModel::computeFiniteVolumeBalance() {}
void PhysicalModel::printPicture(const std::string&) {}

double PhysicalModel::computeFlowStep() {
  std::cout << "I am in PhysicalModel::computeFlowStep(), this is not correct!" << std::endl;
  return 0.0;
}

double PhysicalModel::advance_one_step() {
  if (engine) {
    engine->fluxes();
  } else {
    computeFluxes();
  }
  Handoff::wait_for_copies();
  const double step = engine ? engine->advance() : advance_objects();
  if (watch) watch->step_is_done(step);
  return step;
}

double PhysicalModel::advance_objects() {
  if (watch) watch->sources_come_next();
  computeSourceTerms();
  if (watch) watch->balance_comes_next();
  computeFiniteVolumeBalance();
  return dtMin();
}

void PhysicalModel::watch_steps() { watch = std::make_unique<StepWatch>(*this); }

HydraulicVariableSWE PhysicalModel::state_of(int cell) const {
  if (!engine) return cells[static_cast<std::size_t>(cell)]->U;
  const ::engine::CellOutput state = engine->tables().cell(cell);
  return {state.h, state.qx, state.qy, state.hs, state.qsx, state.qsy};
}

BoundaryInflow PhysicalModel::boundary_inflow(const GenericInterface& boundary, int number) const {
  if (engine) {
    const ::engine::BoundaryInflow inflow = engine->tables().boundary_inflow(number);
    return {inflow.water, inflow.bed};
  }
  const FluxSlots& slots = boundary.cell_left->fluxes;
  const HydraulicVariableSWE& slot = slots[boundary.local_index_left];
  return {slot.h, slot.hs};
}

ExecutionPath PhysicalModel::execution_path() const {
  if (!engine) return {"objects", 1, "that of the build"};
  return {"tables", engine->tables().threads(), engine->tables().instruction_set()};
}

void PhysicalModel::computeFluxes() {
  for (const auto& interface : interfaces) interface->Flux();
}

void PhysicalModel::computeSourceTerms() {
  for (const auto& cell : cells) cell->compute_source();
}

double PhysicalModel::dtMin() {
  const double zero_depth = Constants::ZERO_DEPTH;
  const double dry_step = physics::stable_step_dry(char_length_min, h0, zero_depth);
  double dt = physics::unbounded_step;
  for (const auto& cell : cells) {
    const double step = cell->U.h <= zero_depth ? dry_step : cell->dtMin();
    if (step < dt) dt = step;
  }
  return physics::stable_step_domain(dt, char_length_min);
}

void PhysicalModel::findH0() {
  h0 = 0.0;
  for (const auto& cell : cells) {
    if (cell->U.h > h0) h0 = cell->U.h;
  }
}

void PhysicalModel::calculateCharLengthMin() {
  char_length_min = 1e20;
  for (const auto& cell : cells) {
    if (cell->char_length < char_length_min) char_length_min = cell->char_length;
  }
}

const ComputationalCell* PhysicalModel::limiting_cell() const {
  const ComputationalCell* slowest = nullptr;
  const ComputationalCell* smallest = nullptr;
  double step = physics::unbounded_step;
  bool has_dry_cell = false;
  for (const auto& cell : cells) {
    if (!std::isfinite(cell->U.h + cell->U.qx + cell->U.qy)) return cell.get();
    if (cell->dtMin() < step) {
      step = cell->dtMin();
      slowest = cell.get();
    }
    if (cell->U.h <= Constants::ZERO_DEPTH) has_dry_cell = true;
    if (smallest == nullptr || cell->char_length < smallest->char_length) smallest = cell.get();
  }
  // Dry cells bound the step by the smallest cell of the mesh.
  const double dry_step = physics::stable_step_dry(char_length_min, h0, Constants::ZERO_DEPTH);
  const bool dry_cells_limit = has_dry_cell && dry_step < step;
  return slowest == nullptr || dry_cells_limit ? smallest : slowest;
}

void PhysicalModel::append_interface(std::unique_ptr<GenericInterface> interface, int edge,
                                     int left, int right) {
  interface->tag = edge;
  cells[static_cast<std::size_t>(left)]->add_interface(interface.get());
  if (right >= 0) cells[static_cast<std::size_t>(right)]->add_interface(interface.get());
  interfaces.push_back(std::move(interface));
}

void PhysicalModel::refuse_boundary_code(int code) {
  utils::fatal("Boundary condition of type " + std::to_string(code) + " not defined!\n");
}
