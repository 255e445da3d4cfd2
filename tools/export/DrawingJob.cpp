#include "export/DrawingJob.hpp"

#include <algorithm>
#include <cmath>

#include "case/PointLocator.hpp"
#include "export/csv_writer.hpp"
#include "export/raster.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"

namespace exports {

namespace {

using nlohmann::json;

constexpr double inches_along_a_map = 8.0;

json line_of(std::size_t edge, const Edges& edges, const Mesh& mesh) {
  json line = json::array();
  for (const int node : edges.nodes[edge]) {
    const auto n = static_cast<std::size_t>(node);
    line.push_back({mesh.x[n], mesh.y[n]});
  }
  return line;
}

json outline_of(const Edges& edges, const Mesh& mesh) {
  json lines = json::array();
  for (const BoundaryEdge& boundary : edges.boundary) {
    lines.push_back(line_of(static_cast<std::size_t>(boundary.edge), edges, mesh));
  }
  return lines;
}

/// The lines of a section.
json lines_of(const std::vector<int>& numbers, const Edges& edges, const CaseResults& results) {
  json lines = json::array();
  for (const int number : numbers) {
    if (number < 0 || static_cast<std::size_t>(number) >= edges.nodes.size()) {
      throw tools::Error("Error in file " + results.files.sections.value_or("") + ": found edge " +
                         std::to_string(number) + ", expected an index from 0 to " +
                         std::to_string(static_cast<long>(edges.nodes.size()) - 1) + ".");
    }
    lines.push_back(line_of(static_cast<std::size_t>(number), edges, results.mesh));
  }
  return lines;
}

/// The sections with their lines, and with their names where the case has one for each.
json describe_sections(const CaseResults& results, const Edges& edges) {
  json described = json::array();
  if (!results.files.sections) return described;
  const auto sections = read_section_list(results.files).sections;
  const std::vector<std::string> names =
      tools::names_of_each(tools::read_case_names(results.files.folder).sections, sections.size());
  for (std::size_t s = 0; s < sections.size(); ++s) {
    described.push_back({{"name", names[s]}, {"lines", lines_of(sections[s], edges, results)}});
  }
  return described;
}

json describe_gauges(const CaseFiles& files) {
  json places = json::array();
  if (!files.gauges) return places;
  for (const auto& [x, y] : read_gauge_list(files).points) places.push_back({x, y});
  return places;
}

/// "EPSG:32632 (WGS 84 / UTM zone 32N)"; empty without a system.
std::string text_of(const std::optional<Crs>& crs) {
  if (!crs) return "";
  const std::string code = "EPSG:" + std::to_string(crs->epsg);
  for (const char* kind : {"projected_crs_name", "geographic_crs_name"}) {
    for (const auto& [attribute, name] : crs->texts) {
      if (attribute == kind) return code + " (" + name + ")";
    }
  }
  return code;
}

/// Refuses pixels that show nothing of the mesh.
void expect_mesh(const std::vector<int>& pixels, const Extent& whole) {
  if (std::any_of(pixels.begin(), pixels.end(), [](int pixel) { return pixel >= 0; })) return;
  const json corners = {whole.west, whole.south, whole.east, whole.north};
  throw tools::Error("The map would show nothing of the mesh, whose corners are at " +
                     corners.dump() + ": expected another extent.");
}

/// What all maps share: terrain, outline, pixels, and where gauges and sections are.
json describe_mesh(const CaseResults& results, const DrawingStyle& style,
                   const DrawingFolder& folder) {
  const Mesh& mesh = results.mesh;
  const Extent whole = extent_of(mesh);
  const Extent extent = style.extent.value_or(whole);
  const double length = std::max(extent.east - extent.west, extent.north - extent.south);
  const double pixels_along_a_map = inches_along_a_map * style.dpi;
  const Grid grid = grid_over(extent, length > 0.0 ? length / pixels_along_a_map : 1.0);
  const Triangulation triangles = triangulate(mesh);
  const std::vector<int> pixels = rasterize(mesh, triangles, grid);
  if (style.extent) expect_mesh(pixels, whole);
  folder.save("x", mesh.x);
  folder.save("y", mesh.y);
  folder.save("terrain", results.node_bed());
  folder.save("triangles", triangles.nodes);
  folder.save("triangle_cells", triangles.cell);
  folder.save("pixels", pixels);

  const Edges edges = read_edges(results.files.edges, mesh);
  return {{"outline", outline_of(edges, mesh)},
          {"sections", describe_sections(results, edges)},
          {"gauges", describe_gauges(results.files)},
          {"grid",
           {{"west", grid.west},
            {"north", grid.north},
            {"resolution", grid.resolution},
            {"columns", grid.columns},
            {"rows", grid.rows}}},
          {"extent", {extent.west, extent.east, extent.south, extent.north}},
          {"is_cropped", style.extent.has_value()},
          {"crs", text_of(style.crs)}};
}

/// The bed at every gauge, null where none is known: outside the mesh, and where the bed moves.
json beds_of_gauges(const CaseResults& results) {
  cases::Mesh mesh;
  mesh.x = results.mesh.x;
  mesh.y = results.mesh.y;
  mesh.z = results.mesh.z;
  for (std::size_t i = 0; i < results.mesh.n_cells(); ++i) mesh.add_cell(results.mesh.nodes_of(i));
  const PointLocator locator(mesh);
  json beds = json::array();
  for (const auto& [x, y] : read_gauge_list(results.files).points) {
    const cases::Number cell = locator.cell_at(x, y);
    const bool is_known = cell >= 0 && !results.files.has_sediment;
    beds.push_back(is_known ? json(results.bed[cases::at(cell)]) : json());
  }
  return beds;
}

}  // namespace

DrawingJob::DrawingJob(const CaseResults& results, const DrawingStyle& style)
    : results_(results),
      style_(style),
      job_({{"case", results.files.title},
            {"title", style.title},
            {"has_titles", style.has_titles},
            {"dpi", style.dpi},
            {"has_places", style.has_places},
            {"maps", json::array()},
            {"curves", json::array()}}) {}

void DrawingJob::add_map(const MapField& field, const std::string& picture,
                         const Snapshot* snapshot) {
  const std::string number = std::to_string(job_["maps"].size());
  const std::string values = "values_" + number;
  folder_.save(values, field.values);
  json map = {{"name", field.name},
              {"long_name", field.long_name},
              {"unit", field.unit},
              {"values", values},
              {"picture", picture}};
  if (field.time) map["time"] = *field.time;
  if (!style_.classes.empty()) map["classes"] = style_.classes;
  if (style_.has_logarithmic_classes) map["classes"] = "log";
  if (style_.range) map["range"] = *style_.range;
  if (style_.has_arrows && snapshot != nullptr) {
    map["velocity"] = "velocity_" + number;
    folder_.save(map["velocity"], velocities(results_, *snapshot, dry_depth()));
  }
  below_zero_.add(field.below_zero);
  job_["maps"].push_back(std::move(map));
}

void DrawingJob::add_gauges(const std::string& picture) {
  write_gauges_csv(results_.files, folder_.path("gauges.csv"));
  job_["curves"].push_back({{"kind", "gauges"},
                            {"table", "gauges.csv"},
                            {"picture", picture},
                            {"beds", beds_of_gauges(results_)},
                            {"dry_depth", results_.files.dry_depth}});
}

void DrawingJob::add_sections(const std::string& picture) {
  write_sections_csv(results_.files, folder_.path("sections.csv"));
  job_["curves"].push_back({{"kind", "sections"}, {"table", "sections.csv"}, {"picture", picture}});
}

void DrawingJob::draw() {
  if (!job_["maps"].empty()) job_["mesh"] = describe_mesh(results_, style_, folder_);
  folder_.save("job.json", job_.dump(-1, ' ', false, json::error_handler_t::replace));
  folder_.run_script();
  below_zero_.tell();
}

}  // namespace exports
