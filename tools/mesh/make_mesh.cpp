#include "mesh/make_mesh.hpp"

#include <cmath>
#include <string>
#include <vector>

#include "mesh/cells.hpp"
#include "mesh/extent.hpp"
#include "mesh/features.hpp"
#include "mesh/mesh_quality.hpp"
#include "mesh/mesh_size.hpp"
#include "mesh/numbers.hpp"
#include "mesh/outline.hpp"
#include "mesh/outline_mesher.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

/// The features of a file, if there is one. Names in them mean something for breaklines alone.
std::vector<Feature> features_of(const std::string& path, std::optional<int> epsg,
                                 std::ostream& out) {
  if (path.empty()) return {};
  FeatureFile file(path, epsg);
  for (const Feature& feature : file.features()) {
    Attributes attributes(feature);
    attributes.text("name");
    file.note(attributes);
  }
  if (const std::string remark = file.remark(); !remark.empty()) out << remark << "\n";
  return file.features();
}

/// The reference system in which the outline is meshed: one in metres.
std::optional<int> system_of_mesh(const MakeOptions& options) {
  if (options.of_case.epsg) return options.of_case.epsg;
  const FeatureSystem system = system_of_features(options.of_case.mesh);
  if (system.is_in_degrees) {
    throw tools::Error(options.of_case.mesh +
                       ": its coordinates are degrees; expected metres, or the system to mesh it "
                       "in, as --crs EPSG:32632.");
  }
  return system.epsg;
}

void expect_room_for_an_edge(const Feature& outline, double size) {
  if (outline.shape != Feature::Shape::polygons) return;  // which join_outline() refuses
  const std::vector<Node>& ring = outline.parts.front();
  const auto [low, high] = extent_of(ring);
  if (std::hypot(high.x - low.x, high.y - low.y) >= size) return;
  throw tools::Error(outline.place + ": it covers " + extent_text(ring) +
                     ", less than an edge of " + shown(size) +
                     " m; expected metres, a shorter --size, or, where these are degrees, the "
                     "system to mesh it in, as --crs EPSG:32632.");
}

std::vector<Refinement> refinements_of(const MakeOptions& options, std::optional<int> epsg,
                                       std::ostream& out) {
  std::vector<Refinement> refinements;
  if (options.refinements.empty()) return refinements;
  FeatureFile file(options.refinements, epsg);
  for (const Feature& feature : file.features()) {
    Attributes attributes(feature);
    attributes.text("name");
    if (feature.shape != Feature::Shape::polygons) attributes.refuse("expected a polygon");
    const std::optional<double> size = attributes.number("size");
    if (!size) attributes.refuse("it has no attribute size; expected the length of edges, m");
    if (!(*size > 0.0 && *size <= options.size)) {
      attributes.refuse("found the size " + shown(*size) + ", expected one above 0 and up to " +
                        shown(options.size) + ", that of --size");
    }
    file.note(attributes);
    refinements.push_back({feature.parts, *size});
  }
  if (const std::string remark = file.remark(); !remark.empty()) out << remark << "\n";
  return refinements;
}

std::string whole_number(double value) { return utils::fixed_text(value, 0); }

void expect_few_cells(const MakeOptions& options, const MeshSize& size, double area) {
  const double expected = size.expected_cells(area);
  if (expected <= options.most_cells) return;
  throw tools::Error(
      options.of_case.mesh + ": edges of " + shown(size.smallest()) + " m make about " +
      whole_number(expected) + " cells of " + shown(area) +
      " m2; expected longer ones (--size, --refine), or a higher --most-cells than " +
      whole_number(options.most_cells) + ".");
}

/// What is drawn in detail has short edges, whatever is asked for.
void add_short_sides(const Outline& outline, MeshSize& size) {
  const auto at = [&outline](int point) { return outline.points[static_cast<std::size_t>(point)]; };
  for (const std::vector<int>& ring : outline.rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      size.add_side(at(ring[i]), at(ring[(i + 1) % ring.size()]));
    }
  }
  for (const Outline::Side& side : outline.sides) size.add_side(at(side.from), at(side.to));
}

}  // namespace

Mesh make_mesh(const MakeOptions& options, ImportOptions& of_case, std::ostream& out) {
  of_case.epsg = system_of_mesh(options);
  const std::string& name = of_case.mesh;
  DrawnOutline drawn;
  drawn.outline = features_of(name, of_case.epsg, out);
  expect_room_for_an_edge(drawn.outline.front(), options.size);
  drawn.holes = features_of(options.holes, of_case.epsg, out);
  drawn.breaklines = features_of(options.breaklines, of_case.epsg, out);
  const std::vector<Refinement> refinements = refinements_of(options, of_case.epsg, out);
  MeshSize size(options.size, refinements);
  constexpr double tolerance = 1e-3;  // of the shortest edges
  const Outline outline = join_outline(drawn, tolerance * size.smallest());
  expect_few_cells(options, size, outline.area);
  add_short_sides(outline, size);
  Mesh mesh = mesh_outline(name, outline, size);
  mesh.epsg = of_case.epsg;
  prepare_cells(mesh);
  out << "Made a mesh of " << name << " (" << mesh.format
      << "): " << utils::counted(mesh.nodes.size(), "node") << ", "
      << utils::counted(mesh.cells.size(), "triangle") << ", " << shown(outline.area) << " m2.\n";
  if (!drawn.holes.empty()) {
    out << "Left out " << utils::counted(drawn.holes.size(), "hole") << ".\n";
  }
  if (outline.n_courtyards > 0) {
    out << "Left out " << utils::counted(outline.n_courtyards, "hole")
        << " in holes, too, which no water reaches.\n";
  }
  tell_quality(mesh, out);
  return mesh;
}

}  // namespace mesh_import
