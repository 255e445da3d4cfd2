#include "model/ComputationalCell.hpp"

#include <algorithm>
#include <cmath>

#include "globals/Globals.hpp"
#include "interfaces/GenericInterface.hpp"
#include "physics/cell_geometry.hpp"
#include "physics/cell_update.hpp"
#include "physics/initial_water.hpp"
#include "physics/stable_step.hpp"
#include "sources/SourceTerm.hpp"

namespace {

/// The vertices of a cell as the formulas of its geometry take them.
auto plan_nodes_of(const ComputationalCell& cell) {
  return [&cell](int i) {
    const MeshNode& node = *cell.get_node(i);
    return physics::PlanPoint{node.x, node.y};
  };
}

}  // namespace

ComputationalCell::ComputationalCell(const std::vector<const MeshNode*>& vertices)
    : n_nodes(static_cast<int>(vertices.size())),
      nodes(vertices),
      max_node_level(-1e20),
      min_node_level(1e20) {
  param.last_update_time = Globals_Params::tStart;
  for (const MeshNode* node : nodes) {
    if (node->z > max_node_level) max_node_level = node->z;
    if (node->z < min_node_level) min_node_level = node->z;
  }
  center = compute_center();
  bed_rock_level = center.z;
  bed_level = bed_rock_level;
  area = compute_area();
  perimeter = compute_perimeter();
  char_length = physics::characteristic_length(area, perimeter);
}

ComputationalCell::ComputationalCell(int index, const std::vector<const MeshNode*>& vertices)
    : ComputationalCell(vertices) {
  id = index;
}

MeshNode ComputationalCell::compute_center() const {
  const auto node_at = [this](int i) {
    const MeshNode& node = *get_node(i);
    return physics::SpacePoint{node.x, node.y, node.z};
  };
  const physics::SpacePoint mean = physics::cell_center(n_nodes, node_at);
  return {mean.x, mean.y, mean.z};
}

double ComputationalCell::compute_area() const {
  return physics::cell_area(n_nodes, {center.x, center.y}, plan_nodes_of(*this));
}

double ComputationalCell::accurate_area() const {
  return physics::cell_area_of_differences(n_nodes, plan_nodes_of(*this));
}

double ComputationalCell::compute_perimeter() const {
  return physics::cell_perimeter(n_nodes, plan_nodes_of(*this));
}

void ComputationalCell::add_interface(GenericInterface* interface) {
  interfaces.push_back(interface);
  fluxes.add();
}

void ComputationalCell::sort_interfaces_by_tag() {
  std::sort(interfaces.begin(), interfaces.end(),
            [](const GenericInterface* a, const GenericInterface* b) { return a->tag < b->tag; });
}

void ComputationalCell::set_local_index_to_edges() {
  for (std::size_t k = 0; k < interfaces.size(); ++k) {
    GenericInterface& interface = *interfaces[k];
    if (interface.cell_left->id == id) {
      interface.local_index_left = k;
    } else {
      interface.local_index_right = k;
    }
  }
}

void ComputationalCell::set_hydrodynamic_values(double zs, double qx, double qy) {
  free_surface_level = zs;
  const physics::InitialWater water =
      physics::initial_water(zs, bed_level, qx, qy, Constants::ZERO_DEPTH);
  U.set_values(water.h, water.qx, water.qy);
}

void ComputationalCell::set_bed_rock_level(double z) {
  bed_rock_level = z;
  bed_level = z;
}

void ComputationalCell::set_hs(double hs) {
  U.hs = hs;
  bed_level += hs;
}

void ComputationalCell::compute_source() {
  for (SourceTerm* term : source_terms) term->compute_source_term(Globals::t, S, U, param);
}

double ComputationalCell::dtMin() const {
  return physics::stable_step(U.h, U.qx, U.qy, char_length, Constants::ZERO_DEPTH);
}

HydraulicVariableSWE ComputationalCell::flux_balance() const {
  const auto slot = [&](std::size_t k) {
    return k < fluxes.size() ? fluxes[k] : HydraulicVariableSWE();
  };
  const HydraulicVariableSWE a = slot(0), b = slot(1), c = slot(2);
  HydraulicVariableSWE sum;
  sum.h = physics::sum_of_slots(a.h, b.h, c.h);
  sum.qx = physics::sum_of_slots(a.qx, b.qx, c.qx);
  sum.qy = physics::sum_of_slots(a.qy, b.qy, c.qy);
  sum.hs = physics::sum_of_slots(a.hs, b.hs, c.hs);
  return sum;
}
