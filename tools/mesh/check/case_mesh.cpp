#include "mesh/check/case_mesh.hpp"

#include <limits>
#include <map>

#include "globals/edge_codes.hpp"
#include "mesh/check/checked_file.hpp"
#include "utils/known_keys.hpp"

namespace tools::check {

namespace {

namespace section = utils::section;
using utils::path_of;
using utils::TextScanner;

constexpr int unknown = std::numeric_limits<int>::max();

/// The number of records; `unknown` if it is refused, and then the file is not read on.
int take_count(CheckedFile& file, const char* field, std::size_t tokens_per_record) {
  return file.take_or_give_up(
      unknown, [&](TextScanner& text) { return text.read_count(field, tokens_per_record); });
}

/// Answers the number of nodes, as far as it is known.
int read_nodes(const std::string& name, CaseMesh& mesh, Findings& findings) {
  CheckedFile file(name, path_of(section::mesh, utils::key::nodes), findings);
  const int count = take_count(file, "number of records", 3);
  if (file.is_open()) mesh.nodes.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("node", i, count);
    const double x = file.number("x");
    const double y = file.number("y");
    const double z = file.number("z");
    mesh.nodes.emplace_back(x, y, z);
  }
  mesh.has_nodes = file.is_well();
  return count;
}

int read_cell_size(TextScanner& text) {
  const int size = text.read_count("number of nodes", 1);
  if (size < 3) text.refuse("number of nodes", "at least 3");
  return size;
}

/// Answers the number of cells, as far as it is known.
int read_cells(const std::string& name, int n_nodes, CaseMesh& mesh, Findings& findings) {
  CheckedFile file(name, path_of(section::mesh, utils::key::cells), findings);
  const int count = take_count(file, "number of records", 2);
  if (count == 0) findings.error("no cells", name + ": the mesh has no cells");
  if (file.is_open()) mesh.first_node.reserve(static_cast<std::size_t>(count) + 1);
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("cell", i, count);
    const int size = file.take_or_give_up(0, read_cell_size);
    for (int k = 0; k < size && file.is_open(); ++k) {
      mesh.cell_nodes.push_back(
          file.take(0, [&](TextScanner& text) { return text.read_index("node", n_nodes); }));
    }
    mesh.first_node.push_back(mesh.cell_nodes.size());
  }
  mesh.has_cells = file.is_well();
  return count;
}

/// Which codes the simulator builds an edge from.
class CodeCheck {
 public:
  explicit CodeCheck(const DataFile& data) : has_sediments_(data.has_sediments()) {
    if (data.flux_scheme == "LHLLC") scheme_ = edge_code::scheme_lhllc;
    if (data.flux_scheme == "Roe") scheme_ = edge_code::scheme_roe;
    scheme_is_known_ = data.flux_scheme.has_value();
  }

  /// Ends in a refusal, as the simulator does when it reads or builds the edge.
  void check(TextScanner& text, const CaseEdge& edge) const {
    if (edge_code::is_between_cells(edge.code)) {
      if (edge.right < 0) {
        text.refuse("boundary code", "a boundary condition, since the edge has no right cell");
      }
      if (edge.right == edge.left) {
        text.refuse("boundary code", "two different cells on the sides of an interior edge");
      }
      return;
    }
    if (!is_boundary(edge.code)) {
      text.refuse("boundary code", has_sediments_
                                       ? "-1 to -5, the codes of the model with sediments"
                                       : "-1 to -5, -33 or -44");
    }
  }
  /// Whether interior edges can be built from the data file's flux scheme.
  bool scheme_is_usable() const { return !scheme_is_known_ || scheme_ == edge_code::scheme_lhllc; }

 private:
  bool is_boundary(int code) const {
    switch (code) {
      case edge_code::transmissive:
      case edge_code::discharge:
      case edge_code::water_level:
      case edge_code::wall:
        return true;
      case edge_code::hydrograph:
      case edge_code::limnigraph:
        return !has_sediments_;
      default:
        return false;
    }
  }

  bool has_sediments_;
  bool scheme_is_known_ = false;
  int scheme_ = 0;
};

class EdgesReader {
 public:
  EdgesReader(const DataFile& data, int n_nodes, int n_cells, CaseMesh& mesh, Findings& findings)
      : codes_(data),
        mesh_(mesh),
        findings_(findings),
        file_(*data.edges, path_of(section::mesh, utils::key::edges), findings),
        n_nodes_(n_nodes),
        n_cells_(n_cells) {}

  void read(const DataFile& data) {
    const int count = take_count(file_, "number of records", 5);
    if (file_.is_open()) mesh_.edges.reserve(static_cast<std::size_t>(count));
    bool has_interior = false;
    for (int i = 0; i < count && file_.is_open(); ++i) {
      file_.begin_record("edge", i, count);
      mesh_.edges.push_back(read_edge());
      has_interior |= mesh_.edges.back().code == edge_code::interior;
    }
    mesh_.has_edges = file_.is_well();
    if (has_interior && !codes_.scheme_is_usable()) {
      findings_.error("flux scheme",
                      "\"model/flux scheme\" is \"" + *data.flux_scheme + "\", expected \"LHLLC\"");
    }
  }

 private:
  int index(const char* field, int limit) {
    return file_.take(-1, [&](TextScanner& text) { return text.read_index(field, limit); });
  }
  int right_cell() {
    return file_.take(-1, [&](TextScanner& text) {
      const int right = text.read_integer("right cell");
      if (right >= n_cells_) {
        text.refuse("right cell",
                    "an index from 0 to " + std::to_string(n_cells_ - 1) + ", or -1 on a boundary");
      }
      return right;
    });
  }
  int series(const std::string& name) {
    const auto [known, is_new] = series_.try_emplace(name, static_cast<int>(series_.size()));
    if (is_new) mesh_.series_files.push_back(name);
    return known->second;
  }

  CaseEdge read_edge() {
    CaseEdge edge{};
    edge.series = -1;
    const int refusals_before = file_.refusals();
    edge.left = index("left cell", n_cells_);
    edge.right = right_cell();
    edge.node1 = index("node 1", n_nodes_);
    edge.node2 = index("node 2", n_nodes_);
    edge.code = file_.take_or_give_up(
        edge_code::wall, [](TextScanner& text) { return text.read_integer("boundary code"); });
    if (file_.refusals() == refusals_before) {
      file_.take(0, [&](TextScanner& text) { return codes_.check(text, edge), 0; });
    }
    if (edge.code == edge_code::hydrograph || edge.code == edge_code::limnigraph) {
      edge.series = series(file_.take(
          std::string(), [](TextScanner& text) { return text.read_word("time-series file"); }));
    }
    if (edge.code == edge_code::discharge || edge.code == edge_code::water_level) {
      edge.value = file_.number("imposed value");
    }
    return edge;
  }

  CodeCheck codes_;
  CaseMesh& mesh_;
  Findings& findings_;
  CheckedFile file_;
  int n_nodes_;
  int n_cells_;
  std::map<std::string, int> series_;
};

}  // namespace

int CaseMesh::n_nodes_of(int cell) const {
  const auto c = static_cast<std::size_t>(cell);
  return static_cast<int>(first_node[c + 1] - first_node[c]);
}

int CaseMesh::node_of(int cell, int i) const {
  const int k = i == n_nodes_of(cell) ? 0 : i;
  return cell_nodes[first_node[static_cast<std::size_t>(cell)] + static_cast<std::size_t>(k)];
}

std::vector<const MeshNode*> CaseMesh::corners(int cell) const {
  std::vector<const MeshNode*> found;
  for (int i = 0; i < n_nodes_of(cell); ++i) {
    found.push_back(&nodes[static_cast<std::size_t>(node_of(cell, i))]);
  }
  return found;
}

CaseMesh read_mesh(const DataFile& data, Findings& findings) {
  CaseMesh mesh;
  mesh.first_node.push_back(0);
  const int n_nodes = data.nodes ? read_nodes(*data.nodes, mesh, findings) : unknown;
  const int n_cells = data.cells ? read_cells(*data.cells, n_nodes, mesh, findings) : unknown;
  if (data.edges) EdgesReader(data, n_nodes, n_cells, mesh, findings).read(data);
  return mesh;
}

}  // namespace tools::check
