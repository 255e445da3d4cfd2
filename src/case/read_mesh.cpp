#include "case/read_mesh.hpp"

#include <cmath>

#include "case/EdgeWarnings.hpp"
#include "case/SeriesFiles.hpp"
#include "case/boundary_kinds.hpp"
#include "case/finite_geometry.hpp"
#include "case/mesh_records.hpp"
#include "case/read_series.hpp"
#include "utils/TextScanner.hpp"
#include "utils/stop.hpp"

namespace cases {

namespace {

/// What a run does with its edges as it reads them.
class EdgeReader {
 public:
  EdgeReader(utils::TextScanner& file, int scheme, Case& contents, Diagnostics& diagnostics)
      : file_(file),
        scheme_(scheme),
        contents_(contents),
        series_(contents.series),
        warnings_(diagnostics) {}

  void read() {
    Mesh& mesh = contents_.mesh;
    const auto accept = [](int) {};  // at first: the whole record must be well
    read_edge_records(file_, mesh.n_nodes(), mesh.n_cells(), mesh, accept,
                      [this](const EdgeRecord& edge) { take(edge); });
    warnings_.check_numbers_of_edges(mesh);
  }

 private:
  void take(const EdgeRecord& edge) {
    Mesh& mesh = contents_.mesh;
    const Number number = mesh.n_edges();
    require_known(edge.code == edge_code::interior ? scheme_ : edge.code, number,
                  contents_.has_sediments);
    add_edge(mesh, edge, series_.number_of(edge.file, read_series));
    if (!std::isfinite(mesh.edge_of(number).length)) {
      const Number nodes[] = {edge.node1, edge.node2};
      file_.refuse_record(overflow_of(mesh, nodes));
    }
    const bool is_boundary = !edge_code::is_between_cells(edge.code);
    warnings_.check(mesh, number, is_boundary ? &mesh.boundaries.back() : nullptr);
  }

  utils::TextScanner& file_;
  int scheme_;
  Case& contents_;
  SeriesFiles series_;
  EdgeWarnings warnings_;
};

}  // namespace

void require_known(int code, Number edge, bool has_sediments) {
  if (code == edge_code::scheme_lhllc) return;
  if (code == edge_code::scheme_roe && !has_sediments) {
    utils::fatal("Error. The flux scheme \"Roe\" (code 2, edge " + std::to_string(edge) +
                     ") is not available; use \"LHLLC\".\n",
                 -1, "should be Roe scheme\n");
  }
  if (boundary_kind(code, has_sediments) != nullptr) return;
  utils::fatal("Boundary condition of type " + std::to_string(code) + " not defined!\n");
}

void refuse_mesh_without_cells(const std::string& name) {
  utils::fatal("Error in file " + name +
               ", header, number of records: found 0, expected 1 or more: a mesh has cells.\n");
}

void read_nodes(const std::string& name, Mesh& mesh) {
  utils::TextScanner file(name);
  read_node_records(file, mesh);
}

void read_cells(const std::string& name, Mesh& mesh, AreaLoss& area_loss) {
  utils::TextScanner file(name);
  const Number count = read_cell_records(file, mesh.n_nodes(), mesh, [&](Number i) {
    const CellGeometry cell = mesh.geometry_of(i);
    if (!is_finite(cell)) file.refuse_record(overflow_of(mesh, mesh.nodes_of(i)));
    area_loss.add({cell.center.x, cell.center.y}, cell.area, mesh.accurate_area_of(i));
  });
  if (count == 0) refuse_mesh_without_cells(name);
}

void read_edges(const std::string& name, int scheme, Case& contents, Diagnostics& diagnostics) {
  utils::TextScanner file(name);
  EdgeReader(file, scheme, contents, diagnostics).read();
}

}  // namespace cases
