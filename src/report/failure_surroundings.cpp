#include "report/failure_surroundings.hpp"

#include <algorithm>
#include <map>
#include <vector>

#include "model/PhysicalModel.hpp"
#include "report/cell_json.hpp"

namespace {

using json = nlohmann::ordered_json;

json state_of(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  json state = place_of(cell);
  state.update(json{{"length_m", cell.char_length},
                    {"area_m2", cell.area},
                    {"bed_m", cell.bed_level},
                    {"depth_m", U.h},
                    {"unit_discharge_m2_per_s", {U.qx, U.qy}},
                    {"velocity_m_per_s", speed_of(U)},
                    {"sediment_m", U.hs},
                    {"bed_load_m2_per_s", {U.qsx, U.qsy}},
                    {"manning", cell.friction},
                    {"largest_depth_m", cell.max_values.h}});
  return state;
}

json inflow_of(const HydraulicVariableSWE& slot) {
  return {{"water_m3_per_s", slot.h},
          {"momentum_m4_per_s2", {slot.qx, slot.qy}},
          {"sediment_m3_per_s", slot.hs}};
}

json fluxes_of(GenericInterface& edge) {
  edge.Flux();
  json fluxes = {{"edge", edge.tag},
                 {"length_m", edge.length},
                 {"normal", {edge.normal.x, edge.normal.y}},
                 {"left_cell", edge.cell_left->id},
                 {"into_left", inflow_of(edge.cell_left->fluxes[edge.local_index_left])}};
  if (edge.cell_right == nullptr) {
    fluxes["right_cell"] = nullptr;  // a boundary
  } else {
    fluxes["right_cell"] = edge.cell_right->id;
    fluxes["into_right"] = inflow_of(edge.cell_right->fluxes[edge.local_index_right]);
  }
  return fluxes;
}

/// The cell, and those across its edges.
std::vector<const ComputationalCell*> with_neighbours(const ComputationalCell& cell) {
  std::vector<const ComputationalCell*> cells = {&cell};
  for (const GenericInterface* edge : cell.interfaces) {
    const ComputationalCell* const other =
        edge->cell_left == &cell ? edge->cell_right : edge->cell_left;
    if (other != nullptr && std::find(cells.begin(), cells.end(), other) == cells.end()) {
      cells.push_back(other);
    }
  }
  return cells;
}

}  // namespace

json surroundings_of(PhysicalModel& model, int cell) {
  json cells = json::array();
  std::map<int, GenericInterface*> edges;  // by their place in the edges file, each once
  for (const ComputationalCell* one :
       with_neighbours(*model.cells[static_cast<std::size_t>(cell)])) {
    cells.push_back(state_of(*one));
    for (GenericInterface* edge : one->interfaces) edges[edge->tag] = edge;
  }
  json fluxes = json::array();
  for (const auto& [tag, edge] : edges) fluxes.push_back(fluxes_of(*edge));
  return {{"cells", cells}, {"edges", fluxes}};
}
