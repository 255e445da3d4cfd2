#include "report/failure_surroundings.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "fields/ObjectsFlow.hpp"
#include "report/cell_json.hpp"

namespace {

using cases::at;
using cases::Number;
using fields::GroundCell;
using fields::GroundEdge;
using json = nlohmann::ordered_json;

/// The cell, and those across its edges.
std::vector<Number> with_neighbours(const std::vector<GroundEdge>& edges, Number cell) {
  std::vector<Number> cells = {cell};
  for (const GroundEdge& edge : edges) {
    const Number right = edge.condition ? -1 : edge.right;
    const Number other = edge.left == cell ? right : edge.left;
    if (other >= 0 && std::find(cells.begin(), cells.end(), other) == cells.end()) {
      cells.push_back(other);
    }
  }
  return cells;
}

/// A few edges of a case with their cells, as a case of their own that starts now.
class Part {
 public:
  Part(const cases::Case& whole, const fields::Surroundings& around, double t) : around_(around) {
    contents_.has_sediments = whole.has_sediments;
    contents_.t_start = t;
    contents_.t_end = whole.t_end;
    contents_.zero_depth = whole.zero_depth;
    contents_.sediment = whole.sediment;
    contents_.series = whole.series;
    for (const GroundEdge& edge : around.edges) add_edge(edge);
  }

  /// The objects of the part with the states of the flow, under the numbers of the whole case.
  std::unique_ptr<fields::ObjectsFlow> objects(const fields::Flow& flow) const {
    auto objects = std::make_unique<fields::ObjectsFlow>(contents_);
    const PhysicalModel& model = objects->model();
    for (const auto& [number, place] : cells_) {
      ComputationalCell& cell = *model.cells[at(place)];
      const fields::CellState state = flow.state(number);
      cell.id = number;
      cell.U.set_values(state.h, state.qx, state.qy, state.hs, state.qsx, state.qsy);
      cell.dqs_dh = state.dqs_dh;
      cell.bed_level = state.bed_level;
      cell.free_surface_level = state.water_level;
    }
    for (std::size_t i = 0; i < around_.edges.size(); ++i) {
      model.interfaces[i]->tag = around_.edges[i].number;
    }
    return objects;
  }

 private:
  void add_edge(const GroundEdge& edge) {
    cases::Mesh& mesh = contents_.mesh;
    if (edge.condition) {
      mesh.boundaries.push_back(*edge.condition);
      mesh.boundaries.back().edge = mesh.n_edges();
    }
    mesh.left.push_back(cell(edge.left));
    mesh.right.push_back(edge.right < 0 ? -1 : cell(edge.right));
    mesh.node1.push_back(node(edge.node1));
    mesh.node2.push_back(node(edge.node2));
  }

  /// Place of a cell in the part.
  Number cell(Number number) {
    const auto [known, is_new] = cells_.try_emplace(number, contents_.mesh.n_cells());
    if (!is_new) return known->second;
    const fields::GroundCell& from = around_.cell(number);
    std::vector<Number> nodes;
    for (std::size_t k = 0; k < from.x.size(); ++k) {
      nodes.push_back(node({from.x[k], from.y[k], from.z[k]}));
    }
    contents_.mesh.add_cell(nodes);
    cases::CellFields& fields = contents_.fields;
    if (from.bed) fields.bed.push_back(*from.bed);
    for (auto* column : {&fields.level, &fields.qx, &fields.qy}) column->push_back(0.0);
    return known->second;
  }

  /// Every edge and cell has nodes of its own.
  Number node(const physics::SpacePoint& place) {
    cases::Mesh& mesh = contents_.mesh;
    mesh.x.push_back(place.x);
    mesh.y.push_back(place.y);
    mesh.z.push_back(place.z);
    return mesh.n_nodes() - 1;
  }

  const fields::Surroundings& around_;
  cases::Case contents_;
  std::map<Number, Number> cells_;  ///< places in the part by numbers in the whole
};

json state_of(const fields::Flow& flow, const fields::Ground& ground, const GroundCell& cell) {
  const fields::CellState U = flow.state(cell.number);
  const cases::CellGeometry geometry = ground.geometry_of(cell.number);
  double largest_depth = 0.0;
  flow.read(fields::Field::largest_depth, {&cell.number, 1}, {&largest_depth, 1});
  json state = place_of(cell.number, geometry);
  state.update(json{{"length_m", geometry.char_length()},
                    {"area_m2", geometry.area},
                    {"bed_m", U.bed_level},
                    {"depth_m", U.h},
                    {"unit_discharge_m2_per_s", {U.qx, U.qy}},
                    {"velocity_m_per_s", speed_of(U)},
                    {"sediment_m", U.hs},
                    {"bed_load_m2_per_s", {U.qsx, U.qsy}},
                    {"manning", cell.manning},
                    {"largest_depth_m", largest_depth}});
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

}  // namespace

json surroundings_of(const fields::Flow& flow, const fields::Ground& ground,
                     const cases::Case& contents, double t, Number cell) {
  const std::vector<Number> cells = with_neighbours(ground.around({&cell, 1}).edges, cell);
  const fields::Surroundings around = ground.around(cells);
  json states = json::array(), fluxes = json::array();
  for (const Number one : cells) states.push_back(state_of(flow, ground, around.cell(one)));
  const auto objects = Part(contents, around, t).objects(flow);
  for (const auto& edge : objects->model().interfaces) fluxes.push_back(fluxes_of(*edge));
  return {{"cells", states}, {"edges", fluxes}};
}
