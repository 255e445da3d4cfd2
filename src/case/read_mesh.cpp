#include "case/read_mesh.hpp"

#include <cmath>
#include <map>

#include "case/EdgeWarnings.hpp"
#include "case/boundary_kinds.hpp"
#include "case/finite_geometry.hpp"
#include "case/read_series.hpp"
#include "utils/MeshReader.hpp"
#include "utils/stop.hpp"

namespace cases {

namespace {

std::string overflow_of_nodes(const Mesh& mesh, std::span<const Number> nodes) {
  std::vector<physics::SpacePoint> points;
  for (const Number node : nodes) {
    points.push_back({mesh.x[at(node)], mesh.y[at(node)], mesh.z[at(node)]});
  }
  return overflow_of(points);
}

/// Ends the run unless the model has what a code asks for.
void require_known(int code, int edge, bool has_sediments) {
  if (code == edge_code::scheme_lhllc) return;
  if (code == edge_code::scheme_roe && !has_sediments) {
    utils::fatal("Error. The flux scheme \"Roe\" (code 2, edge " + std::to_string(edge) +
                     ") is not available; use \"LHLLC\".\n",
                 -1, "should be Roe scheme\n");
  }
  const BoundaryKind* const kind = boundary_kind(code);
  if (kind != nullptr && (kind->with_sediments || !has_sediments)) return;
  utils::fatal("Boundary condition of type " + std::to_string(code) + " not defined!\n");
}

/// The series of the edges read so far, each file once.
class SeriesFiles {
 public:
  explicit SeriesFiles(std::vector<Series>& series) : series_(series) {}

  int number_of(const std::string& file) {
    if (file.empty()) return -1;
    const auto [known, is_new] = numbers_.try_emplace(file, static_cast<int>(series_.size()));
    if (is_new) series_.push_back(read_series(file));
    return known->second;
  }

 private:
  std::vector<Series>& series_;
  std::map<std::string, int> numbers_;
};

void reserve_edges(Mesh& mesh, int count) {
  for (auto* column : {&mesh.left, &mesh.right, &mesh.node1, &mesh.node2}) {
    column->reserve(at(count));
  }
}

}  // namespace

void read_nodes(const std::string& name, Mesh& mesh) {
  utils::MeshReader reader(name, "node", 3);
  const int count = reader.get_number_of_elements();
  for (auto* column : {&mesh.x, &mesh.y, &mesh.z}) column->reserve(at(count));
  for (int i = 0; i < count; ++i) {
    const std::vector<double>& node = reader.read_next_node(3);
    mesh.x.push_back(node[0]);
    mesh.y.push_back(node[1]);
    mesh.z.push_back(node[2]);
  }
}

void read_cells(const std::string& name, Mesh& mesh, AreaLoss& area_loss) {
  utils::MeshReader reader(name, "cell", 2);
  const int count = reader.get_number_of_elements();
  if (count == 0) {
    utils::fatal("Error in file " + name +
                 ", header, number of records: found 0, expected 1 or more: a mesh has cells.\n");
  }
  mesh.cell_nodes.reserve(3 * at(count));
  for (int i = 0; i < count; ++i) {
    const std::vector<int>& nodes = reader.read_next_cell(mesh.n_nodes());
    mesh.add_cell(nodes);
    const CellGeometry cell = mesh.geometry_of(i);
    if (!is_finite(cell)) reader.refuse_record(overflow_of_nodes(mesh, nodes));
    area_loss.add({cell.center.x, cell.center.y}, cell.area, mesh.accurate_area_of(i));
  }
}

void read_edges(const std::string& name, int scheme, Case& contents, Diagnostics& diagnostics) {
  Mesh& mesh = contents.mesh;
  utils::MeshReader reader(name, "edge", 5);
  const int count = reader.get_number_of_elements();
  reserve_edges(mesh, count);
  SeriesFiles series(contents.series);
  EdgeWarnings warnings(mesh, diagnostics);
  for (int i = 0; i < count; ++i) {
    const auto& [left, right, node1, node2, code, value, file] =
        reader.read_next_edge(mesh.n_nodes(), mesh.n_cells());
    require_known(code == edge_code::interior ? scheme : code, i, contents.has_sediments);
    mesh.left.push_back(left);
    mesh.right.push_back(right < 0 ? -1 : right);
    mesh.node1.push_back(node1);
    mesh.node2.push_back(node2);
    const bool is_boundary = !edge_code::is_between_cells(code);
    if (is_boundary) mesh.boundaries.push_back({i, code, value, series.number_of(file)});
    if (!std::isfinite(mesh.edge_of(i).length)) {
      const Number nodes[] = {node1, node2};
      reader.refuse_record(overflow_of_nodes(mesh, nodes));
    }
    warnings.check(i, is_boundary ? &mesh.boundaries.back() : nullptr);
  }
  warnings.check_numbers_of_edges();
}

}  // namespace cases
