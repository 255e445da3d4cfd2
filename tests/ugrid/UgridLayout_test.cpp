// What files hold, value by value. How readers take it is looked at in the tests of the exports.
#include "ugrid/UgridLayout.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "support/TemporaryFolder.hpp"
#include "support/square.hpp"

namespace {

using fields::Field;

/// Keeps what it is given, by the names of the variables.
class KeptFile : public ugrid::DataFile {
 public:
  explicit KeptFile(const ugrid::Definitions& definitions) : definitions_(definitions) {}

  void put(std::size_t variable, std::size_t record, std::span<const int> values) override {
    keep(variable, record, values, ugrid::Type::integer);
  }
  void put(std::size_t variable, std::size_t record, std::span<const float> values) override {
    keep(variable, record, values, ugrid::Type::single_precision);
  }
  void put(std::size_t variable, std::size_t record, std::span<const double> values) override {
    keep(variable, record, values, ugrid::Type::double_precision);
  }
  void put(std::size_t variable, std::string_view characters) override {
    keep(variable, 0, characters, ugrid::Type::character);
    texts_[definitions_.variables[variable].name] = characters;
  }
  const std::string& text_of(const std::string& name) const { return texts_.at(name); }
  const std::vector<double>& of(const std::string& name, std::size_t record = 0) const {
    return kept_.at({name, record});
  }
  bool has(const std::string& name) const { return kept_.count({name, 0}) > 0; }

 private:
  void keep(std::size_t variable, std::size_t record, auto values, ugrid::Type type) {
    const ugrid::Variable& defined = definitions_.variables[variable];
    EXPECT_EQ(defined.type, type) << defined.name;
    EXPECT_EQ(definitions_.n_values(defined), values.size()) << defined.name;
    kept_[{defined.name, record}].assign(values.begin(), values.end());
  }

  const ugrid::Definitions& definitions_;
  std::map<std::pair<std::string, std::size_t>, std::vector<double>> kept_;
  std::map<std::string, std::string> texts_;
};

ugrid::Contents contents_of_square() {
  return {.title = "Square",
          .crs = std::nullopt,
          .epoch = "1970-01-01 00:00:00",
          .n_nodes = 4,
          .n_faces = 2,
          .width = 3,
          .has_sediments = false,
          .has_infiltration = false,
          .has_maxima_of_flow = false,
          .has_largest_depths = true,
          .is_double = false};
}

/// The second cell is dry.
fields::Columns water() {
  fields::Columns columns;
  columns[Field::depth] = {4.0, 0.0};
  columns[Field::discharge_x] = {2.0, 0.0};
  columns[Field::discharge_y] = {-1.0, 0.0};
  columns[Field::largest_depth] = {5.0, 0.0};
  return columns;
}

const ugrid::Variable& variable(const ugrid::UgridLayout& layout, const std::string& name) {
  for (const ugrid::Variable& variable : layout.definitions().variables) {
    if (variable.name == name) return variable;
  }
  throw std::out_of_range(name);
}

TEST(UgridLayout, PutsTheMeshTheFlowAndItsLargestDepths) {
  for (const bool is_double : {false, true}) {
    ugrid::Contents contents = contents_of_square();
    contents.is_double = is_double;
    const ugrid::UgridLayout layout(contents);
    KeptFile file(layout.definitions());
    const std::vector<double> bed{1.0, 3.0};
    const fields::Columns columns = water();
    layout.put_topology(file);
    layout.put_mesh(file,
                    cases::all_rows_of(support::square(), {0.0, 0.0}, support::square().z, bed));
    layout.put_snapshot(file, 3, 60.0, {columns, bed, 0.001});
    layout.put_maxima(file, {columns, bed, 0.001});
    EXPECT_EQ(file.of("Mesh2d_node_z"), (std::vector<double>{0.0, 0.0, 3.0, 6.0}));
    EXPECT_EQ(file.of("Mesh2d_face_nodes"), (std::vector<double>{0, 1, 2, 0, 2, 3}));
    EXPECT_EQ(file.of("Mesh2d_bed"), bed);
    EXPECT_EQ(file.of("time", 3), (std::vector<double>{60.0}));
    EXPECT_EQ(file.of("Mesh2d_depth", 3), (std::vector<double>{4.0, 0.0}));
    EXPECT_EQ(file.of("Mesh2d_level", 3)[0], 5.0);
    EXPECT_EQ(file.of("Mesh2d_velocity_y", 3)[0], -0.25);
    EXPECT_TRUE(std::isnan(file.of("Mesh2d_velocity_y", 3)[1]));
    EXPECT_EQ(file.of("Mesh2d_max_depth"), (std::vector<double>{5.0, 0.0}));
    EXPECT_EQ(file.of("Mesh2d_max_level")[0], 6.0);
  }
}

/// The bytes of a file of this layout that put(file) writes.
template <class Put>
std::string written(const ugrid::UgridLayout& layout, const Put& put) {
  const support::TemporaryFolder folder;
  utils::WritableFile bytes;
  bytes.open(folder.file("a.nc"));
  ugrid::ClassicFile file(bytes, ugrid::classic_layout(layout.definitions()));
  file.begin();
  put(file);
  EXPECT_EQ(file.error(), 0);
  return folder.read("a.nc");
}

TEST(UgridLayout, PutsAMeshPieceByPieceAsAtOnce) {
  cases::Mesh mesh = support::square();
  mesh.add_cell(std::vector<cases::Number>{0, 1, 2, 3});
  ugrid::Contents contents = contents_of_square();
  contents.n_faces = 3;
  contents.width = 4;
  const ugrid::UgridLayout layout(contents);
  const cases::MeshRows whole =
      cases::all_rows_of(mesh, {7.0, 9.0}, {1.0, 2.0, 3.0, 4.0}, {5.0, 6.0, 7.0});
  const auto piece = [&](std::size_t node, std::size_t nodes, std::size_t cell, std::size_t cells) {
    const auto part = [](const auto& values, std::size_t first, std::size_t count) {
      const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
      return std::vector(begin, begin + static_cast<std::ptrdiff_t>(count));
    };
    return cases::MeshRows{node,
                           cell,
                           part(whole.node_x, node, nodes),
                           part(whole.node_y, node, nodes),
                           part(whole.node_bed, node, nodes),
                           part(whole.cell_x, cell, cells),
                           part(whole.cell_y, cell, cells),
                           part(whole.cell_bed, cell, cells),
                           4,
                           part(whole.cell_nodes, 4 * cell, 4 * cells)};
  };
  const auto at_once = [&](auto& file) { layout.put_mesh(file, whole); };
  const auto in_pieces = [&](auto& file) {
    layout.put_rows_of_mesh(file, piece(1, 3, 0, 1));
    layout.put_rows_of_mesh(file, piece(4, 0, 3, 0));
    layout.put_rows_of_mesh(file, piece(0, 1, 1, 2));
  };
  EXPECT_TRUE(written(layout, in_pieces) == written(layout, at_once));
}

TEST(UgridLayout, PutsNoNumbersWhereTheLargestDepthsAreNotKnown) {
  for (const bool is_double : {false, true}) {
    ugrid::Contents contents = contents_of_square();
    contents.n_faces = 150000;  // more than are put at once
    contents.is_double = is_double;
    const ugrid::UgridLayout layout(contents);
    const ugrid::ClassicLayout places = ugrid::classic_layout(layout.definitions());
    const std::string bytes =
        written(layout, [&](ugrid::ClassicFile& file) { layout.put_no_maxima(file); });
    const std::string nan =
        is_double ? std::string("\x7f\xf8\0\0\0\0\0\0", 8) : std::string("\x7f\xc0\0\0", 4);
    std::string expected;
    for (std::size_t cell = 0; cell < contents.n_faces; ++cell) expected += nan;
    const auto& variables = layout.definitions().variables;
    int maxima = 0;
    for (std::size_t k = 0; k < variables.size(); ++k) {
      if (variables[k].name.find("Mesh2d_max_") != 0) continue;
      ++maxima;
      EXPECT_TRUE(bytes.substr(places.places[k], expected.size()) == expected) << variables[k].name;
    }
    EXPECT_EQ(maxima, 2);
  }
}

TEST(UgridLayout, NamesTheReferenceSystemWhereThereIsOne) {
  ugrid::Contents contents = contents_of_square();
  EXPECT_THROW(variable(ugrid::UgridLayout(contents), "crs"), std::out_of_range);
  contents.crs = ugrid::Crs{32632, {{"grid_mapping_name", "transverse_mercator"}}, {{"k", 0.5}}};
  const ugrid::UgridLayout layout(contents);
  const auto& attributes = variable(layout, "crs").attributes;
  ASSERT_EQ(attributes.size(), 5U);
  EXPECT_EQ(std::get<std::string>(attributes[1].value), "EPSG:32632");
  EXPECT_EQ(std::get<int>(attributes[2].value), 32632);
  EXPECT_EQ(std::get<double>(attributes[4].value), 0.5);
  EXPECT_EQ(variable(layout, "Mesh2d_depth").attributes.back().name, "grid_mapping");
}

TEST(UgridLayout, HasTheQuantitiesOfItsModel) {
  ugrid::Contents contents = contents_of_square();
  contents.has_sediments = contents.has_maxima_of_flow = true;
  const ugrid::UgridLayout layout(contents);
  EXPECT_TRUE(layout.definitions().grows(variable(layout, "Mesh2d_bed")));
  EXPECT_FALSE(layout.definitions().grows(variable(layout, "Mesh2d_arrival_time")));
  EXPECT_EQ(layout.maxima().size(), 9U);
  EXPECT_EQ(layout.quantities_in_time().size(), 11U);
}

TEST(UgridLayout, NamesGaugesAndSectionsInRowsOfOneLength) {
  ugrid::Contents contents = contents_of_square();
  contents.stations = {{"pier", "br\u00fccke"}, {1.5, 2.5}, {3.5, 4.5}, {"weir"}};
  const ugrid::UgridLayout layout(contents);
  KeptFile file(layout.definitions());
  layout.put_stations(file, contents.stations);
  EXPECT_EQ(file.text_of("station_name"), std::string("pier\0\0\0br\u00fccke", 14));
  EXPECT_EQ(file.of("station_x"), (std::vector<double>{1.5, 2.5}));
  EXPECT_EQ(file.of("station_y"), (std::vector<double>{3.5, 4.5}));
  EXPECT_EQ(file.text_of("section_name"), "weir");
}

TEST(UgridLayout, HasNoStationsWithoutNames) {
  const ugrid::UgridLayout layout(contents_of_square());
  EXPECT_THROW(variable(layout, "station_name"), std::out_of_range);
  EXPECT_THROW(variable(layout, "section_name"), std::out_of_range);
  EXPECT_EQ(layout.definitions().dimensions.size(), 4U);
}

}  // namespace
