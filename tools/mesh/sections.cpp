#include "mesh/sections.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "mesh/fields.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

/// A line as a chain of its pieces, which a file holds in any order and direction.
class Chain {
 public:
  Chain(const Mesh& mesh, std::string name) : mesh_(mesh), name_(std::move(name)) {}

  void add(const LinePiece& piece, int edge) {
    if (!known_.insert(edge).second) return;
    const auto step = static_cast<int>(steps_.size());
    steps_.push_back({piece.node1, piece.node2, edge});
    steps_at_[piece.node1].push_back(step);
    steps_at_[piece.node2].push_back(step);
  }

  /// The steps from one end to the other, in the direction of the piece that the file names first.
  struct Step {
    int from, to, edge;
  };
  std::vector<Step> steps() const {
    std::vector<Step> chain;
    int node = start();
    int previous = -1;
    while (chain.size() < steps_.size()) {
      const auto& here = steps_at_.at(node);
      const auto next =
          std::find_if(here.begin(), here.end(), [&](int step) { return step != previous; });
      if (next == here.end() || chain_is_closed(chain)) refuse(node, "has a gap");
      const Step& step = steps_[static_cast<std::size_t>(*next)];
      chain.push_back({node, step.from == node ? step.to : step.from, step.edge});
      node = chain.back().to;
      previous = *next;
    }
    const bool is_backward = std::any_of(chain.begin(), chain.end(), [this](const Step& step) {
      return step.edge == steps_.front().edge && step.from != steps_.front().from;
    });
    if (is_backward) reverse(chain);
    return chain;
  }

  static void reverse(std::vector<Step>& chain) {
    std::reverse(chain.begin(), chain.end());
    for (Step& step : chain) std::swap(step.from, step.to);
  }

 private:
  static bool chain_is_closed(const std::vector<Step>& chain) {
    return !chain.empty() && chain.back().to == chain.front().from;
  }

  /// An end of the line, or any node of a closed one.
  int start() const {
    int end = steps_.front().from;
    for (const auto& [node, steps] : steps_at_) {
      if (steps.size() > 2) refuse(node, "branches");
      if (steps.size() == 1) end = node;
    }
    return end;
  }

  [[noreturn]] void refuse(int node, const std::string& fault) const {
    const Node& at = mesh_.nodes[static_cast<std::size_t>(node)];
    throw tools::Error("--section " + name_ + ": the line " + fault + " at " +
                       shown_point(at.x, at.y) + "; expected one chain of edges.");
  }

  const Mesh& mesh_;
  std::string name_;
  std::vector<Step> steps_;
  std::map<int, std::vector<int>> steps_at_;  // by node
  std::set<int> known_;
};

/// Adds an edge, whose normal points in the direction of the section.
void add_edge(const Mesh& mesh, const Edge& edge, int number, Section& section) {
  const Node& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
  const Node& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
  section.edges.push_back(number);
  section.length += std::hypot(b.x - a.x, b.y - a.y);
  section.nx += b.y - a.y;
  section.ny += a.x - b.x;
}

void normalize(Section& section) {
  const double norm = std::hypot(section.nx, section.ny);
  if (!(norm > 0.0)) return;
  section.nx /= norm;
  section.ny /= norm;
}

}  // namespace

Section make_section(const Mesh& mesh, std::vector<Edge>& edges, const EdgeIndex& index,
                     const std::string& request) {
  const std::string suffix = "=reversed";
  const bool is_reversed =
      request.size() > suffix.size() &&
      request.compare(request.size() - suffix.size(), suffix.size(), suffix) == 0;
  Section section;
  section.name = is_reversed ? request.substr(0, request.size() - suffix.size()) : request;
  const auto& names = mesh.line_names;
  const auto line =
      static_cast<int>(std::find(names.begin(), names.end(), section.name) - names.begin());
  if (line == static_cast<int>(names.size())) {
    throw tools::Error("--section " + section.name + ": the mesh has no line \"" + section.name +
                       "\"; it has: " + list_of_names(names) + ".");
  }
  const auto refuse = [&](const LinePiece& piece, const std::string& fault) {
    const std::size_t node = static_cast<std::size_t>(std::max(piece.node1, 0));
    throw tools::Error("--section " + section.name + ": the piece of the line at " +
                       shown_point(mesh.nodes[node].x, mesh.nodes[node].y) + " " + fault +
                       "; expected an edge between two cells.");
  };
  Chain chain(mesh, section.name);
  bool is_empty = true;
  for (const LinePiece& piece : mesh.line_pieces) {
    if (piece.line != line) continue;
    const int edge = index.find(piece.node1, piece.node2);
    if (edge < 0) refuse(piece, "is no edge of a cell");
    if (edges[static_cast<std::size_t>(edge)].is_boundary()) {
      refuse(piece, "is on the boundary, which is recorded by itself where it is open");
    }
    chain.add(piece, edge);
    is_empty = false;
  }
  if (is_empty) {
    throw tools::Error("--section " + section.name + ": the line has no piece in the mesh.");
  }
  auto steps = chain.steps();
  if (is_reversed) Chain::reverse(steps);
  for (const auto& step : steps) {
    Edge& edge = edges[static_cast<std::size_t>(step.edge)];
    if (edge.node1 != step.from) edge.turn();
    add_edge(mesh, edge, step.edge, section);
  }
  normalize(section);
  return section;
}

std::vector<Section> boundary_sections(const Mesh& mesh, const std::vector<Edge>& edges,
                                       const Boundaries& boundaries) {
  std::vector<Section> of_boundary(boundaries.list.size());
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const int boundary = boundaries.of_edge[i];
    if (boundary < 0) continue;
    add_edge(mesh, edges[i], static_cast<int>(i), of_boundary[static_cast<std::size_t>(boundary)]);
  }
  std::vector<Section> sections;
  for (std::size_t i = 0; i < of_boundary.size(); ++i) {
    const Boundary& boundary = boundaries.list[i];
    if (boundary.name.empty() || !boundary.lets_water_pass()) continue;
    of_boundary[i].name = boundary.name;
    normalize(of_boundary[i]);
    sections.push_back(std::move(of_boundary[i]));
  }
  return sections;
}

}  // namespace mesh_import
