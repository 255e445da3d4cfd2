#include "interfaces/GenericInterface.hpp"

#include "globals/Globals.hpp"

GenericInterface::GenericInterface(ComputationalCell* left, ComputationalCell* right,
                                   const MeshNode& a, const MeshNode& b)
    : nodes{&a, &b}, cell_left(left), cell_right(right) {
  const physics::Edge edge = physics::edge_between({a.x, a.y}, {b.x, b.y});
  length = edge.length;
  normal = MeshNode(edge.nx, edge.ny, 0.0);
}

double GenericInterface::c(double h) { return physics::celerity(h, Constants::ZERO_DEPTH); }

double GenericInterface::Fr(double q, double h) {
  return physics::froude(q, h, Constants::ZERO_DEPTH);
}

double GenericInterface::Sigma(double q, double h) {
  return physics::sigma(q, h, Constants::ZERO_DEPTH);
}

double GenericInterface::Mu(double qn, double qt, double h) {
  return physics::mu(qn, qt, h, Constants::ZERO_DEPTH);
}

bool GenericInterface::With(const MeshNode* node_a, const MeshNode* node_b) const {
  int matches = 0;
  for (const MeshNode* node : nodes) {
    if (node == node_a || node == node_b) ++matches;
  }
  return matches >= 2;
}

physics::EdgeSide GenericInterface::left_side() const {
  return physics::to_edge_frame(water_above_bed_rock(*cell_left), edge(), Constants::ZERO_DEPTH);
}

void GenericInterface::set_left_slot(const physics::WaterSlot& slot) {
  cell_left->fluxes[local_index_left].set_values(slot.h, slot.qx, slot.qy, 0.0, 0.0, 0.0);
}

void GenericInterface::set_right_slot(const physics::WaterSlot& slot) {
  cell_right->fluxes[local_index_right].set_values(slot.h, slot.qx, slot.qy, 0.0, 0.0, 0.0);
}

void GenericInterface::set_left_bed_slot(double hs) { cell_left->fluxes[local_index_left].hs = hs; }

void GenericInterface::set_right_bed_slot(double hs) {
  cell_right->fluxes[local_index_right].hs = hs;
}

physics::CellWater water_above_bed_rock(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  return {U.h, U.qx, U.qy, cell.bed_rock_level, cell.free_surface_level};
}
