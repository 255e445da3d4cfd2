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
using json = nlohmann::ordered_json;

/// The edges of these cells, in their order.
std::vector<Number> edges_of(const cases::Mesh& mesh, const std::vector<Number>& cells) {
  const auto is_one = [&](Number cell) {
    return std::find(cells.begin(), cells.end(), cell) != cells.end();
  };
  std::vector<Number> edges;
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    if (is_one(mesh.left[at(edge)]) || is_one(mesh.right[at(edge)])) edges.push_back(edge);
  }
  return edges;
}

/// The cell, and those across its edges.
std::vector<Number> with_neighbours(const cases::Mesh& mesh, Number cell) {
  std::vector<Number> cells = {cell};
  for (const Number edge : edges_of(mesh, {cell})) {
    const Number left = mesh.left[at(edge)];
    const Number right = mesh.boundary_on(edge) == nullptr ? mesh.right[at(edge)] : -1;
    const Number other = left == cell ? right : left;
    if (other >= 0 && std::find(cells.begin(), cells.end(), other) == cells.end()) {
      cells.push_back(other);
    }
  }
  return cells;
}

/// A few edges of a case with their cells, as a case of their own that starts now.
class Part {
 public:
  Part(const cases::Case& whole, const std::vector<Number>& edges, double t) : whole_(whole) {
    contents_.has_sediments = whole.has_sediments;
    contents_.t_start = t;
    contents_.t_end = whole.t_end;
    contents_.zero_depth = whole.zero_depth;
    contents_.sediment = whole.sediment;
    contents_.series = whole.series;
    for (const Number edge : edges) add_edge(edge);
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
    for (std::size_t i = 0; i < edges_.size(); ++i) model.interfaces[i]->tag = edges_[i];
    return objects;
  }

 private:
  void add_edge(Number edge) {
    const cases::Mesh& from = whole_.mesh;
    cases::Mesh& to = contents_.mesh;
    if (const cases::Boundary* const boundary = from.boundary_on(edge)) {
      to.boundaries.push_back(*boundary);
      to.boundaries.back().edge = to.n_edges();
    }
    const Number right = from.right[at(edge)];
    to.left.push_back(cell(from.left[at(edge)]));
    to.right.push_back(right < 0 ? -1 : cell(right));
    to.node1.push_back(node(from.node1[at(edge)]));
    to.node2.push_back(node(from.node2[at(edge)]));
    edges_.push_back(edge);
  }

  /// Place of a cell in the part.
  Number cell(Number number) {
    const auto [known, is_new] = cells_.try_emplace(number, contents_.mesh.n_cells());
    if (!is_new) return known->second;
    std::vector<Number> nodes;
    for (const Number n : whole_.mesh.nodes_of(number)) nodes.push_back(node(n));
    contents_.mesh.add_cell(nodes);
    add_fields(number);
    return known->second;
  }

  void add_fields(Number cell) {
    cases::CellFields& to = contents_.fields;
    const cases::CellFields& from = whole_.fields;
    if (!from.bed.empty()) to.bed.push_back(from.bed[at(cell)]);
    for (auto* column : {&to.level, &to.qx, &to.qy}) column->push_back(0.0);
  }

  Number node(Number number) {
    cases::Mesh& mesh = contents_.mesh;
    const auto [known, is_new] = nodes_.try_emplace(number, mesh.n_nodes());
    if (is_new) {
      mesh.x.push_back(whole_.mesh.x[at(number)]);
      mesh.y.push_back(whole_.mesh.y[at(number)]);
      mesh.z.push_back(whole_.mesh.z[at(number)]);
    }
    return known->second;
  }

  const cases::Case& whole_;
  cases::Case contents_;
  std::map<Number, Number> cells_, nodes_;  ///< places in the part by numbers in the whole
  std::vector<Number> edges_;               ///< numbers in the whole
};

json state_of(const fields::Flow& flow, const cases::Case& contents, Number cell) {
  const fields::CellState U = flow.state(cell);
  const cases::CellGeometry geometry = contents.mesh.geometry_of(cell);
  const std::vector<double>& manning = contents.fields.manning;
  double largest_depth = 0.0;
  flow.read(fields::Field::largest_depth, {&cell, 1}, {&largest_depth, 1});
  json state = place_of(contents.mesh, cell);
  state.update(json{{"length_m", geometry.char_length()},
                    {"area_m2", geometry.area},
                    {"bed_m", U.bed_level},
                    {"depth_m", U.h},
                    {"unit_discharge_m2_per_s", {U.qx, U.qy}},
                    {"velocity_m_per_s", speed_of(U)},
                    {"sediment_m", U.hs},
                    {"bed_load_m2_per_s", {U.qsx, U.qsy}},
                    {"manning", manning.empty() ? 0.0 : manning[at(cell)]},
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

json surroundings_of(const fields::Flow& flow, const cases::Case& contents, double t, Number cell) {
  const std::vector<Number> cells = with_neighbours(contents.mesh, cell);
  json states = json::array(), fluxes = json::array();
  for (const Number one : cells) states.push_back(state_of(flow, contents, one));
  const auto objects = Part(contents, edges_of(contents.mesh, cells), t).objects(flow);
  for (const auto& edge : objects->model().interfaces) fluxes.push_back(fluxes_of(*edge));
  return {{"cells", states}, {"edges", fluxes}};
}
