#include "model/PhysicalModel.hpp"

#include <iostream>
#include <string>

#include "globals/Globals.hpp"
#include "physics/stable_step.hpp"
#include "utils/stop.hpp"

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
  computeFluxes();
  if (observer != nullptr) observer->sources_come_next();
  computeSourceTerms();
  if (observer != nullptr) observer->balance_comes_next();
  computeFiniteVolumeBalance();
  return dtMin();
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
