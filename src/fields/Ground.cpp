#include "fields/Ground.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "case/PointLocator.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

bool is_earlier(const GroundEdge& a, const GroundEdge& b) { return a.number < b.number; }
bool is_earlier(const GroundCell& a, const GroundCell& b) { return a.number < b.number; }

/// Those of both lists, each once, ascending.
template <class Item>
void unite(std::vector<Item>& items, std::vector<Item> more) {
  items.insert(items.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
  std::stable_sort(items.begin(), items.end(),
                   [](const Item& a, const Item& b) { return is_earlier(a, b); });
  const auto end = std::unique(items.begin(), items.end(),
                               [](const Item& a, const Item& b) { return a.number == b.number; });
  items.erase(end, items.end());
}

physics::SpacePoint node_of(const cases::Mesh& mesh, Number node) {
  return {mesh.x[at(node)], mesh.y[at(node)], mesh.z[at(node)]};
}

template <class Item>
const Item& with_number(const std::vector<Item>& items, Number number) {
  return *std::lower_bound(items.begin(), items.end(), number,
                           [](const Item& item, Number wanted) { return item.number < wanted; });
}

}  // namespace

GroundEdge ground_edge(const cases::Mesh& mesh, Number edge) {
  GroundEdge result = {edge,
                       mesh.left[at(edge)],
                       mesh.right[at(edge)],
                       node_of(mesh, mesh.node1[at(edge)]),
                       node_of(mesh, mesh.node2[at(edge)]),
                       {}};
  if (const cases::Boundary* const condition = mesh.boundary_on(edge)) {
    result.condition = *condition;
    result.condition->edge = -1;
  }
  return result;
}

GroundCell ground_cell(const cases::Case& contents, Number cell) {
  GroundCell result;
  result.number = cell;
  for (const Number number : contents.mesh.nodes_of(cell)) {
    const physics::SpacePoint node = node_of(contents.mesh, number);
    result.x.push_back(node.x);
    result.y.push_back(node.y);
    result.z.push_back(node.z);
  }
  const cases::CellFields& fields = contents.fields;
  if (!fields.bed.empty()) result.bed = fields.bed[at(cell)];
  if (!fields.manning.empty()) result.manning = fields.manning[at(cell)];
  return result;
}

cases::CellGeometry GroundCell::geometry() const {
  cases::Mesh mesh;
  mesh.x = x;
  mesh.y = y;
  mesh.z = z;
  std::vector<Number> nodes(x.size());
  std::iota(nodes.begin(), nodes.end(), 0);
  mesh.add_cell(nodes);
  return mesh.geometry_of(0);
}

const GroundEdge& Surroundings::edge(Number number) const { return with_number(edges, number); }

const GroundCell& Surroundings::cell(Number number) const { return with_number(cells, number); }

void Surroundings::add(Surroundings other) {
  unite(edges, std::move(other.edges));
  unite(cells, std::move(other.cells));
}

cases::CellGeometry WholeGround::geometry_of(Number cell) const {
  return case_.mesh.geometry_of(cell);
}

std::vector<GroundEdge> WholeGround::edges(std::span<const Number> numbers) const {
  std::vector<GroundEdge> edges;
  for (const Number number : numbers) edges.push_back(ground_edge(case_.mesh, number));
  return edges;
}

std::vector<Number> WholeGround::cells_at(std::span<const physics::PlanPoint> points) const {
  std::vector<Number> cells;
  for (const physics::PlanPoint& point : points) {
    if (!locator_) locator_ = std::make_unique<PointLocator>(case_.mesh);
    cells.push_back(locator_->cell_at(point.x, point.y));
  }
  return cells;
}

Surroundings WholeGround::around(std::span<const Number> cells) const {
  const cases::Mesh& mesh = case_.mesh;
  const auto is_asked_for = [&](Number cell) {
    return std::find(cells.begin(), cells.end(), cell) != cells.end();
  };
  Surroundings result;
  std::vector<Number> at_sides;
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    if (!is_asked_for(left) && !is_asked_for(right)) continue;
    result.edges.push_back(ground_edge(mesh, edge));
    at_sides.push_back(left);
    if (right >= 0) at_sides.push_back(right);
  }
  std::sort(at_sides.begin(), at_sides.end());
  at_sides.erase(std::unique(at_sides.begin(), at_sides.end()), at_sides.end());
  for (const Number cell : at_sides) result.cells.push_back(ground_cell(case_, cell));
  return result;
}

}  // namespace fields
