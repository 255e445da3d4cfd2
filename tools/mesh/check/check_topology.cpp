#include "mesh/check/check_topology.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

#include "case/coincident_nodes.hpp"
#include "case/edge_faults.hpp"
#include "mesh/check/numbers.hpp"
#include "utils/counted.hpp"

namespace tools::check {

namespace {

using cases::at;

std::string edge_name(int edge) { return "edge " + std::to_string(edge); }
std::string cell_name(int cell) { return "cell " + std::to_string(cell); }

/// A side of a cell: a cell and two of its nodes, the smaller index first.
struct Side {
  int node1, node2, cell;
  int edge;  ///< the edge that claims to be this side; -1 for the cell's own side

  Side(int a, int b, int c, int e)
      : node1(std::min(a, b)), node2(std::max(a, b)), cell(c), edge(e) {}
  bool is_same(const Side& other) const {
    return node1 == other.node1 && node2 == other.node2 && cell == other.cell;
  }
  bool operator<(const Side& other) const {
    if (node1 != other.node1) return node1 < other.node1;
    if (node2 != other.node2) return node2 < other.node2;
    if (cell != other.cell) return cell < other.cell;
    return edge < other.edge;
  }
  std::string nodes() const {
    return "nodes " + std::to_string(node1) + " and " + std::to_string(node2);
  }
};

std::vector<Side> sides_of_cells(const cases::Mesh& mesh) {
  std::vector<Side> sides;
  sides.reserve(mesh.cell_nodes.size());
  for (int c = 0; c < mesh.n_cells(); ++c) {
    const std::span<const cases::Number> nodes = mesh.nodes_of(c);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      sides.emplace_back(nodes[i], nodes[(i + 1) % nodes.size()], c, -1);
    }
  }
  std::sort(sides.begin(), sides.end());
  return sides;
}

std::vector<Side> sides_of_edges(const cases::Mesh& mesh) {
  std::vector<Side> sides;
  sides.reserve(2 * mesh.left.size());
  for (int e = 0; e < mesh.n_edges(); ++e) {
    const std::size_t k = at(e);
    sides.emplace_back(mesh.node1[k], mesh.node2[k], mesh.left[k], e);
    if (mesh.right[k] >= 0) sides.emplace_back(mesh.node1[k], mesh.node2[k], mesh.right[k], e);
  }
  std::sort(sides.begin(), sides.end());
  return sides;
}

void report_missing(const Side& side, Findings& findings) {
  findings.warning("missing edge", cell_name(side.cell) + " does not close: no edge joins its " +
                                       side.nodes() + "; no water passes there");
}

void report_foreign(const Side& side, Findings& findings) {
  findings.warning("foreign edge", edge_name(side.edge) + " names " + cell_name(side.cell) +
                                       ", of which " + side.nodes() + " are no side");
}

void report_repeated(const Side& first, const Side& second, Findings& findings) {
  findings.warning("duplicate edge", edge_name(second.edge) + " repeats " + edge_name(first.edge) +
                                         ": both are the side of " + cell_name(first.cell) +
                                         " between " + first.nodes());
}

/// Names the side once, whatever number of cells has it.
void check_overlaps(const std::vector<Side>& sides, Findings& findings) {
  for (std::size_t i = 2; i < sides.size(); ++i) {
    const Side& a = sides[i - 2];
    const Side& c = sides[i];
    if (a.node1 != c.node1 || a.node2 != c.node2) continue;
    findings.warning("overlapping cells", cell_name(a.cell) + ", " +
                                              std::to_string(sides[i - 1].cell) + " and " +
                                              std::to_string(c.cell) + " share the side between " +
                                              a.nodes() + ": cells overlap");
  }
}

class Regions {
 public:
  explicit Regions(int n_cells) : parent_(static_cast<std::size_t>(n_cells)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  int root(int cell) {
    while (parent(cell) != cell) cell = parent(cell) = parent(parent(cell));
    return cell;
  }
  /// The smaller index becomes the root, so that a region bears the name of its first cell.
  void join(int a, int b) {
    const auto [first, second] = std::minmax({root(a), root(b)});
    parent(second) = first;
  }

 private:
  int& parent(int cell) { return parent_[static_cast<std::size_t>(cell)]; }
  std::vector<int> parent_;
};

void check_unused_nodes(const cases::Mesh& mesh, Findings& findings) {
  std::vector<bool> is_used(at(mesh.n_nodes()), false);
  for (const int node : mesh.cell_nodes) is_used[at(node)] = true;
  for (std::size_t i = 0; i < is_used.size(); ++i) {
    if (!is_used[i])
      findings.warning("unused node", "node " + std::to_string(i) + " is in no cell");
  }
}

}  // namespace

void check_sides(const cases::Mesh& mesh, Findings& findings) {
  const std::vector<Side> of_cells = sides_of_cells(mesh);
  const std::vector<Side> of_edges = sides_of_edges(mesh);
  auto edge = of_edges.begin();
  for (const Side& side : of_cells) {
    for (; edge != of_edges.end() && *edge < side; ++edge) {
      report_foreign(*edge, findings);
    }
    if (edge == of_edges.end() || !edge->is_same(side)) {
      report_missing(side, findings);
      continue;
    }
    const Side& first = *edge++;
    for (; edge != of_edges.end() && edge->is_same(side); ++edge) {
      report_repeated(first, *edge, findings);
    }
  }
  for (; edge != of_edges.end(); ++edge) report_foreign(*edge, findings);
  check_overlaps(of_cells, findings);

  for (int c = 0; c < mesh.n_cells(); ++c) {
    const std::size_t size = mesh.nodes_of(c).size();
    if (size == 3) continue;
    findings.warning("no triangle", cell_name(c) + " has " + std::to_string(size) +
                                        " sides: only its first three edges count");
  }
}

void check_orientation(const cases::Mesh& mesh, Findings& findings) {
  for (int e = 0; e < mesh.n_edges(); ++e) {
    const cases::Boundary* const boundary = mesh.boundary_on(e);
    const cases::EdgeFaults faults = cases::faults_of(mesh, e, boundary);
    if (faults.has_no_length) {
      const physics::PlanPoint a = mesh.plan_node(mesh.node1[at(e)]);
      findings.warning("edge without length", edge_name(e) + " has no length, at " +
                                                  point(a.x, a.y) + ": its flux is not a number");
    }
    if (faults.points_inwards) {
      findings.warning("edge orientation", edge_name(e) +
                                               " has a normal that points into its left cell " +
                                               std::to_string(mesh.left[at(e)]) +
                                               "; list its two nodes the other way round");
    }
    if (faults.is_two_sided) {
      findings.warning("two-sided boundary",
                       edge_name(e) + " has the boundary code " + std::to_string(boundary->code) +
                           " and also a right cell " + std::to_string(mesh.right[at(e)]) +
                           ", which gets no flux through it; -1 lets water pass");
    }
  }
}

long check_shores(const cases::Mesh& mesh, const std::vector<CellValues>& cells, double zero_depth,
                  Findings& findings) {
  long higher_first = 0;
  for (int e = 0; e < mesh.n_edges(); ++e) {
    if (mesh.boundary_on(e) != nullptr) continue;
    const CellValues& left = cells[at(mesh.left[at(e)])];
    const CellValues& right = cells[at(mesh.right[at(e)])];
    if (!(left.bed > right.bed)) continue;
    ++higher_first;
    if (left.depth > zero_depth || !(right.depth > zero_depth)) continue;
    findings.warning("shore orientation",
                     edge_name(e) + " names the dry " + cell_name(mesh.left[at(e)]) +
                         " first, beside water in the lower " + cell_name(mesh.right[at(e)]) +
                         ": water at rest there will move; exchange its cells and its nodes");
  }
  return higher_first;
}

void check_cracks(const cases::Mesh& mesh, Findings& findings) {
  std::vector<std::array<int, 2>> boundary;
  for (std::size_t e = 0; e < mesh.left.size(); ++e) {
    if (mesh.right[e] < 0) boundary.push_back({mesh.node1[e], mesh.node2[e]});
  }
  const auto pairs = cases::coincident_nodes(mesh.x, mesh.y, boundary);
  if (pairs.empty()) return;
  const auto& [a, b] = pairs.front();
  const physics::PlanPoint place = mesh.plan_node(a);
  findings.warning("crack", utils::counted(pairs.size(), "pair") +
                                " of nodes on the boundary lie at one place, the first of them " +
                                std::to_string(a) + " and " + std::to_string(b) + " at " +
                                point(place.x, place.y) +
                                ": no water passes between their cells; where no thin wall is "
                                "meant, quillmere-mesh import --merge-nodes joins them");
}

std::vector<long> check_regions(const cases::Mesh& mesh, const std::vector<CellValues>& cells,
                                Findings& findings) {
  Regions regions(mesh.n_cells());
  for (int e = 0; e < mesh.n_edges(); ++e) {
    if (mesh.boundary_on(e) == nullptr) regions.join(mesh.left[at(e)], mesh.right[at(e)]);
  }
  std::vector<std::pair<long, int>> sizes(static_cast<std::size_t>(mesh.n_cells()));
  for (int c = 0; c < mesh.n_cells(); ++c) {
    sizes[static_cast<std::size_t>(c)].second = c;
    --sizes[static_cast<std::size_t>(regions.root(c))].first;  // negative: the largest comes first
  }
  std::sort(sizes.begin(), sizes.end());

  std::vector<long> counts;
  for (const auto& [negative_size, first_cell] : sizes) {
    if (negative_size == 0) break;
    counts.push_back(-negative_size);
    if (counts.size() == 1) continue;
    const physics::SpacePoint& center = cells[at(first_cell)].center;
    findings.warning("isolated region",
                     "no water passes between " + utils::counted(-negative_size, "cell") +
                         " around " + cell_name(first_cell) + " at " + point(center.x, center.y) +
                         " and the rest of the mesh");
  }
  check_unused_nodes(mesh, findings);
  return counts;
}

}  // namespace tools::check
