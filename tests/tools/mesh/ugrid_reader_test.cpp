#include "mesh/ugrid_reader.hpp"

#include <gtest/gtest.h>
#include <netcdf.h>

#include <limits>
#include <random>

#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/ImportTest.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Mesh;
using support::contains;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A square of 2 m beside a triangle, 1 km east and 2 km north of the origin.
struct UgridFile {
  bool is_netcdf4 = false, names_y_first = false, is_turned = false, has_fill = true;
  int topologies = 1, dimension = 2, start = 0, epsg = 32632;
  std::string epsg_words;  // in place of the number
  nc_type connectivity = NC_INT;
  std::vector<double> face_nodes = {0, 1, 2, 3, 1, 4, 2, -9};
  std::vector<double> x = {1000, 1002, 1002, 1000, 1004};
  struct Elevation {
    std::string name, standard_name, location;
    std::vector<double> values;
    std::string positive;
  };
  std::vector<Elevation> elevations = {{"mesh_node_z", "altitude", "node", {5, 6, 7, 8, 9}, ""}};
  std::string node_coordinates = "mesh_node_x mesh_node_y";

  void write(const std::string& path) {
    well(nc_create(path.c_str(), NC_CLOBBER | (is_netcdf4 ? NC_NETCDF4 : NC_64BIT_OFFSET), &id));
    const int nodes = dimension_of("nodes", x.size());
    const int faces = dimension_of("faces", face_nodes.size() / 4);
    const int corners = dimension_of("corners", 4);
    for (int i = 0; i < topologies; ++i) {
      const int mesh = variable(i == 0 ? "mesh" : "mesh_2", NC_INT, {});
      text(mesh, "cf_role", "mesh_topology");
      well(nc_put_att_int(id, mesh, "topology_dimension", NC_INT, 1, &dimension));
      text(mesh, "node_coordinates", names_y_first ? "mesh_node_y mesh_node_x" : node_coordinates);
      text(mesh, "face_node_connectivity", "mesh_face_nodes");
      if (is_turned) text(mesh, "face_dimension", "faces");
    }
    const int nx = variable("mesh_node_x", NC_DOUBLE, {nodes});
    const int ny = variable("mesh_node_y", NC_DOUBLE, {nodes});
    text(nx, "standard_name", "projection_x_coordinate");
    text(ny, "standard_name", "projection_y_coordinate");
    text(nx, "grid_mapping", "crs");
    const int crs = variable("crs", NC_INT, {});
    if (epsg_words.empty()) {
      well(nc_put_att_int(id, crs, "epsg", NC_INT, 1, &epsg));
    } else {
      text(crs, "epsg", epsg_words);
    }
    const int table =
        variable("mesh_face_nodes", connectivity,
                 is_turned ? std::vector<int>{corners, faces} : std::vector<int>{faces, corners});
    const double fill = -9;
    if (has_fill) well(nc_put_att_double(id, table, "_FillValue", connectivity, 1, &fill));
    if (start != 0) well(nc_put_att_int(id, table, "start_index", NC_INT, 1, &start));
    std::vector<int> z;
    for (const Elevation& elevation : elevations) {
      const bool on_nodes = elevation.values.size() == x.size();
      z.push_back(variable(elevation.name, NC_DOUBLE, {on_nodes ? nodes : faces}));
      if (!elevation.standard_name.empty()) {
        text(z.back(), "standard_name", elevation.standard_name);
      }
      if (!elevation.location.empty()) text(z.back(), "location", elevation.location);
      if (!elevation.positive.empty()) text(z.back(), "positive", elevation.positive);
    }
    well(nc_enddef(id));
    const std::vector<double> y = {2000, 2000, 2002, 2002, 2000};
    well(nc_put_var_double(id, nx, x.data()));
    well(nc_put_var_double(id, ny, y.data()));
    std::vector<double> stored = face_nodes;
    for (double& node : stored) node += node >= 0.0 ? start : 0;
    if (is_turned) {
      for (std::size_t i = 0; i < stored.size(); ++i) {
        const double node = face_nodes[i];
        stored[i % 4 * (stored.size() / 4) + i / 4] = node + (node >= 0.0 ? start : 0);
      }
    }
    well(nc_put_var_double(id, table, stored.data()));
    for (std::size_t i = 0; i < z.size(); ++i) {
      well(nc_put_var_double(id, z[i], elevations[i].values.data()));
    }
    well(nc_close(id));
  }

 private:
  int id = -1;

  static void well(int status) { ASSERT_EQ(status, NC_NOERR) << nc_strerror(status); }
  int dimension_of(const char* name, std::size_t length) {
    int number = -1;
    well(nc_def_dim(id, name, length, &number));
    return number;
  }
  int variable(const std::string& name, nc_type type, const std::vector<int>& dimensions) {
    int number = -1;
    well(nc_def_var(id, name.c_str(), type, static_cast<int>(dimensions.size()), dimensions.data(),
                    &number));
    return number;
  }
  void text(int of, const char* name, const std::string& value) {
    if (is_netcdf4) {  // where texts may be strings
      const char* words = value.c_str();
      well(nc_put_att_string(id, of, name, 1, &words));
    } else {
      well(nc_put_att_text(id, of, name, value.size(), value.c_str()));
    }
  }
};

class Ugrid : public testing::Test {
 protected:
  Mesh read(UgridFile& file) {
    file.write(folder.file("m.nc"));
    return mesh_import::read_ugrid(folder.file("m.nc"));
  }
  std::string fault(UgridFile file) {
    return support::message_of([&] { read(file); });
  }
  support::TemporaryFolder folder;
};

TEST_F(Ugrid, IsReadInEveryWayToWriteIt) {
  for (const bool is_netcdf4 : {false, true}) {
    for (const int start : {0, 1}) {
      for (const bool is_turned : {false, true}) {
        UgridFile file;
        file.is_netcdf4 = is_netcdf4;
        file.start = start;
        file.is_turned = is_turned;
        file.names_y_first = is_turned;
        file.connectivity = is_turned ? NC_DOUBLE : NC_INT;
        const Mesh mesh = read(file);
        EXPECT_EQ(mesh.format,
                  std::string("UGRID in ") + (is_netcdf4 ? "NetCDF-4" : "classic NetCDF"));
        ASSERT_EQ(mesh.nodes.size(), 5U);
        EXPECT_EQ(mesh.nodes[4].x, 1004.0);
        EXPECT_EQ(mesh.nodes[4].y, 2000.0);
        EXPECT_EQ(mesh.nodes[4].z, 9.0);
        ASSERT_EQ(mesh.cells.size(), 2U);
        EXPECT_EQ(mesh.cells[0].nodes, (std::array<int, 4>{0, 1, 2, 3}));
        EXPECT_EQ(mesh.cells[1].nodes, (std::array<int, 4>{1, 4, 2, -1}));
        EXPECT_EQ(mesh.epsg, 32632);
        EXPECT_TRUE(mesh.bed_of_cell.empty());
      }
    }
  }
}

TEST_F(Ugrid, MayFillFacesUpWithWhatTheFormatDoes) {
  UgridFile file;
  file.has_fill = false;
  file.face_nodes.back() = NC_FILL_INT;
  EXPECT_FALSE(read(file).cells.at(1).is_quad());
}

TEST_F(Ugrid, TakesTheElevationThatLooksMostLikeIt) {
  const UgridFile::Elevation depth{"depth", "", "node", {1, 1, 1, 1, 1}, ""};
  const UgridFile::Elevation named{"mesh_node_z", "", "", {5, 6, 7, 8, 9}, ""};
  const UgridFile::Elevation altitude{"zb", "altitude", "node", {15, 16, 17, 18, 19}, ""};
  const UgridFile::Elevation bed{"mesh_bed", "", "face", {3, 4}, ""};
  UgridFile file;
  file.elevations = {depth, named};
  EXPECT_EQ(read(file).nodes[4].z, 9.0);
  file.elevations = {depth, named, altitude};
  Mesh mesh = read(file);
  EXPECT_EQ(mesh.nodes[4].z, 19.0);
  EXPECT_EQ(mesh.remarks,
            std::vector<std::string>{"The variable zb gives the nodes their elevation."});
  file.elevations = {depth, bed};
  mesh = read(file);
  EXPECT_EQ(mesh.nodes[4].z, 0.0);
  EXPECT_EQ(mesh.bed_of_cell, (std::vector<double>{3, 4}));
  file.elevations = {depth};
  EXPECT_EQ(read(file).remarks,
            std::vector<std::string>{"The file holds no elevation: all of them are 0."});
}

TEST_F(Ugrid, KeepsABedOfCellsThatIsNotTheMeanOfTheirNodes) {
  UgridFile file;
  file.elevations.push_back({"mesh_bed", "", "face", {6.5, 22.0 / 3.0}, ""});
  EXPECT_TRUE(read(file).bed_of_cell.empty());
  file.elevations.back().values[1] = 4;
  EXPECT_EQ(read(file).bed_of_cell, (std::vector<double>{6.5, 4}));
}

TEST_F(Ugrid, TurnsDepthsBelowADatumOver) {
  UgridFile file;
  file.elevations[0].positive = "down";
  EXPECT_EQ(read(file).nodes[4].z, -9.0);
}

TEST_F(Ugrid, LeavesOutAnElevationWithGaps) {
  UgridFile file;
  file.elevations[0].values[2] = nan;
  const Mesh mesh = read(file);
  EXPECT_EQ(mesh.nodes[4].z, 0.0);
  EXPECT_EQ(mesh.remarks.at(0), "The variable mesh_node_z is left out: it lacks 1 of 5 values.");
}

TEST_F(Ugrid, MayTellItsReferenceSystemInWords) {
  for (const bool is_netcdf4 : {false, true}) {
    UgridFile file;
    file.is_netcdf4 = is_netcdf4;
    for (const char* words : {"EPSG:25832", "epsg:25832", "25832"}) {
      file.epsg_words = words;
      EXPECT_EQ(read(file).epsg, 25832) << words;
    }
    for (const char* words : {"UTM 32", "-1", "none", "x"}) {
      file.epsg_words = words;
      EXPECT_EQ(read(file).epsg, std::nullopt) << words;
    }
  }
}

TEST_F(Ugrid, ThatIsFaultyIsRefusedWithFileAndVariable) {
  UgridFile file;
  file.face_nodes[5] = 5;
  EXPECT_TRUE(contains(fault(file),
                       "m.nc, variable mesh_face_nodes: face 1 (counted from 0): found the node 5, "
                       "expected 0 to 4"))
      << fault(file);
  file.face_nodes[5] = -9;
  EXPECT_TRUE(contains(fault(file), "face 1 (counted from 0): found the node nan, expected 0 to 4"))
      << fault(file);
  file.face_nodes = {0, 1, -9, -9, 1, 4, 2, -9};
  EXPECT_TRUE(contains(fault(file), "face 0 (counted from 0): found 2 nodes, expected 3 or 4"));
  file.face_nodes = {};
  EXPECT_TRUE(contains(fault(file), "m.nc, variable mesh_face_nodes: found no face; expected a "))
      << fault(file);
  file = {};
  file.x = {};
  EXPECT_TRUE(contains(fault(file), "m.nc, variable mesh_node_x: found no node; expected a mesh"))
      << fault(file);
  file = {};
  file.start = 2;
  EXPECT_TRUE(contains(fault(file), "mesh_face_nodes: found the start_index 2, expected 0 or 1"));
  file = {};
  file.topologies = 2;
  EXPECT_TRUE(contains(fault(file), "m.nc: found 2 meshes of dimension 2: mesh, mesh_2; expected "))
      << fault(file);
  file = {};
  file.dimension = 1;
  EXPECT_TRUE(contains(fault(file), "m.nc: found 0 meshes of dimension 2; expected one variable"));
  file = {};
  file.node_coordinates = "mesh_node_x lost";
  EXPECT_TRUE(contains(fault(file),
                       "m.nc, variable mesh: its attribute node_coordinates names "
                       "lost, which the file does not have"));
  file.node_coordinates = "mesh_node_x";
  EXPECT_TRUE(contains(fault(file), "names 1 variable, expected 2"));
  file = {};
  file.x[3] = nan;
  EXPECT_TRUE(contains(fault(file), "m.nc, variable mesh_node_x: found no number at node 3"));
  const std::string path = folder.write("n.nc", "no NetCDF at all");
  EXPECT_TRUE(contains(support::message_of([&] { mesh_import::read_ugrid(path); }),
                       "n.nc: found no NetCDF file ("));
  EXPECT_TRUE(contains(support::message_of([&] { mesh_import::read_ugrid(folder.file("o.nc")); }),
                       "o.nc: the file cannot be opened."));
}

/// The library crashes on some of these files: that must not end the program.
TEST_F(Ugrid, ThatIsCutOffOrDamagedIsReadOrRefused) {
  std::mt19937 random(20);
  int n_files = 0;
  const auto expect_an_answer = [&](const std::string& text) {
    const std::string name = "damaged" + std::to_string(n_files++) + ".nc";
    const std::string path = folder.write(name, text);
    const std::string answer = support::message_of([&] { mesh_import::read_ugrid(path); });
    EXPECT_TRUE(answer == "no error" || contains(answer, name)) << answer;
  };
  for (const bool is_netcdf4 : {false, true}) {
    UgridFile file;
    file.is_netcdf4 = is_netcdf4;
    read(file);
    const std::string text = folder.read("m.nc");
    for (int k = 0; k < 30; ++k) {
      std::string damaged = text;
      for (int n = 0; n < 3; ++n) damaged[random() % text.size()] = static_cast<char>(random());
      expect_an_answer(damaged);
      expect_an_answer(text.substr(0, random() % text.size()));
    }
  }
}

/// As release 4.9.0 does where a file announces more dimensions than there can be.
TEST_F(Ugrid, OnWhichTheLibraryCrashesIsRefused) {
  UgridFile file;
  read(file);
  std::string text = folder.read("m.nc");
  text.at(12) = '\x7f';
  const std::string path = folder.write("m.nc", text);
  const std::string answer = support::message_of([&] { mesh_import::read_ugrid(path); });
  EXPECT_TRUE(contains(answer, "m.nc: the netCDF library crashes on this file; expected a whole") ||
              contains(answer, "m.nc: found no NetCDF file"))
      << answer;
}

using ImportUgrid = support::ImportTest;

#ifdef QUILLMERE_HAS_GDAL
TEST_F(ImportUgrid, OfAnUnknownReferenceSystemIsRefusedUnlessAnotherOneIsGiven) {
  UgridFile file;
  file.epsg = 999999;
  file.write(folder.file("m.nc"));
  const auto result = import({"m.nc", "case"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(contains(result.err, "m.nc: EPSG:999999 is not known; expected the code of a "))
      << result.err;
  const auto told = import({"m.nc", "case", "--crs", "EPSG:32632"});
  EXPECT_EQ(told.status, 0) << told.err;
}
#endif

TEST_F(ImportUgrid, OfItsOwnResultsGivesTheMeshBack) {
  import_well({"--level", "left=1", "--end", "1", "--crs", "EPSG:32632"});
  nlohmann::json changed = data();
  changed["output"]["results"] = "results.nc";
  folder.write("case/data.json", changed.dump());
  run_case();
  const auto result = import({"case/out/results.nc", "again"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(contains(result.out,
                       "Read case/out/results.nc (UGRID in classic NetCDF): 20 nodes, 24 "
                       "triangles.\nThe variable Mesh2d_node_z gives the nodes their elevation.\n"))
      << result.out;
  for (const char* name : {"nodes.txt", "cells.txt"}) {
    EXPECT_EQ(folder.read(std::string("again/") + name), folder.read(std::string("case/") + name));
  }
  EXPECT_TRUE(contains(folder.read("again/data.json"), "EPSG:32632"));
}

}  // namespace
