// A simulation of the library computes what the program computes.
#include <cmath>
#include <tuple>

#include "case/EndAtFirstError.hpp"
#include "case/read_case.hpp"
#include "fields/Clock.hpp"
#include "fields/make_flow.hpp"
#include "library/LibraryTest.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"
#include "utils/TextBuffer.hpp"

namespace {

using quillmere::EdgeKind;
using quillmere::Field;
using quillmere::Simulation;

class SimulationOfFiles : public LibraryFiles {
 protected:
  cases::Case contents_of_files() {
    std::ostringstream log, out;
    utils::Console console(out);
    return cases::read_case("data.json", {log, console}, told).contents;
  }
  void expect_the_bits_of_the_objects(const support::Case& c, int steps) {
    const support::RunGlobals globals{1e-3};
    Simulation simulation = open(c, 2);
    const cases::Case contents = contents_of_files();
    const auto objects = fields::make_flow(contents, told, {.path = "objects"});
    fields::Clock clock = fields::clock_at_start(contents, *objects);
    for (int step = 0; step < steps; ++step) {
      ASSERT_EQ(simulation.time(), clock.t) << step;
      ASSERT_EQ(simulation.time_step(), clock.dt) << step;
      simulation.step();
      fields::advance(*objects, contents, clock);
    }
    EXPECT_EQ(simulation.steps(), steps);
    const auto& whole = dynamic_cast<const fields::WholeFlow&>(*objects);
    std::vector<double> values(cases::at(contents.mesh.n_cells()));
    for (std::size_t k = 0; k < std::size(all_fields); ++k) {
      whole.read(fields::field_table[k].field, values);
      EXPECT_EQ(simulation.read(all_fields[k]), values) << fields::field_table[k].quantity;
    }
  }

  void expect_the_same_from_arrays(quillmere::Scheme scheme) {
    support::Case c;
    c.data["model"]["flux scheme"] = scheme == quillmere::Scheme::LHLLC ? "LHLLC" : "HLL2";
    c.west = "-33 inflow.txt";
    c.east = "-4 0.9";
    c.files["inflow.txt"] = "3\n0 -0.1\n1 -0.3\n20 -0.1\n";
    c.add_friction(c.per_cell("0.03"));
    c.add_fixed_bed(c.per_cell("0.05"));
    c.set_times(0.0, 50.0);
    Simulation of_files = open(c);
    const cases::Case read = contents_of_files();

    quillmere::Case arrays;
    arrays.t_end = read.t_end;
    arrays.courant_number = read.cfl;
    arrays.scheme = scheme;
    arrays.zero_depth = read.zero_depth;
    const quillmere::Mesh mesh = of_files.mesh();
    arrays.x = mesh.x;
    arrays.y = mesh.y;
    arrays.z = mesh.z;
    arrays.cell_nodes = mesh.cell_nodes;
    arrays.edges = mesh.edges;
    arrays.series.push_back({read.series[0].times, read.series[0].values});
    arrays.level = read.fields.level;
    arrays.bed = read.fields.bed;
    arrays.manning = read.fields.manning;
    Simulation of_arrays(arrays);
    EXPECT_EQ(sight_of(of_arrays), sight_of(of_files));
    take_steps(of_arrays, 50);
    take_steps(of_files, 50);
    EXPECT_EQ(sight_of(of_arrays), sight_of(of_files));
    EXPECT_GT(volume_of(of_files), 1.0);
  }

  support::Told told;
};

/// The columns h, qx and qy as snapshots write them.
std::vector<std::string> water_of(const Simulation& simulation) {
  const auto h = simulation.read(Field::depth);
  const auto qx = simulation.read(Field::discharge_x), qy = simulation.read(Field::discharge_y);
  std::vector<std::string> rows;
  for (std::size_t i = 0; i < h.size(); ++i) {
    utils::TextBuffer row;
    row << h[i] << '\t' << qx[i] << '\t' << qy[i];
    rows.emplace_back(row.text());
  }
  return rows;
}

}  // namespace

TEST_F(SimulationOfFiles, HasTheBitsOfTheObjectsInEveryField) {
  support::Case c = support::full_case(40, 30);
  c.set_times(0.0, 50.0);
  expect_the_bits_of_the_objects(c, 60);
  expect_the_bits_of_the_objects(sand_case(40, 30), 60);
}

TEST(SimulationOfArrays, TellsItsMeshAndItsTimes) {
  const quillmere::Case pool = open_pool(EdgeKind::water_level, 1.5);
  const Simulation simulation(pool);
  EXPECT_EQ(simulation.start_time(), pool.t_start);
  EXPECT_EQ(simulation.end_time(), pool.t_end);
  const quillmere::Mesh mesh = simulation.mesh();
  EXPECT_EQ(mesh.x, pool.x);
  EXPECT_EQ(mesh.y, pool.y);
  EXPECT_EQ(mesh.z, pool.z);
  EXPECT_EQ(mesh.cell_nodes, pool.cell_nodes);
  ASSERT_EQ(mesh.first_node.size(), pool.cell_nodes.size() / 3 + 1);
  for (std::size_t cell = 0; cell < mesh.first_node.size(); ++cell) {
    EXPECT_EQ(mesh.first_node[cell], 3 * static_cast<std::int64_t>(cell));
  }
  ASSERT_EQ(mesh.edges.size(), pool.edges.size());
  for (std::size_t e = 0; e < mesh.edges.size(); ++e) {
    const auto tuple = [](const quillmere::Edge& edge) {
      return std::tuple(edge.left, edge.right, edge.node1, edge.node2, edge.kind, edge.value,
                        edge.series);
    };
    EXPECT_EQ(tuple(mesh.edges[e]), tuple(pool.edges[e])) << e;
  }
}

TEST_F(SimulationOfFiles, HasTheBitsOfTheWalkOfThePositiveSchemes) {
  for (const char* const scheme : {"HLL1", "HLL2"}) {
    support::Case c = support::full_case(40, 30);
    c.set_times(0.0, 50.0);
    c.data["model"]["flux scheme"] = scheme;
    expect_the_bits_of_the_objects(c, 60);
  }
}

TEST_F(SimulationOfFiles, HasTheStatesThatTheProgramWrites) {
  const support::Case c = support::full_case();
  Simulation simulation = open(c);
  ASSERT_EQ(support::run_case(folder).status, 0);
  for (const auto& [time, name] : {std::pair(0.0, "out/pic_0_00.txt"),
                                   {0.5, "out/pic_0_50.txt"},
                                   {1.25, "out/pic_1_25.txt"}}) {
    simulation.run_until(time);
    const std::vector<std::string> rows = water_of(simulation);
    const std::vector<std::string> written = support::lines(folder.read(name));
    ASSERT_EQ(written.size(), rows.size() + 1) << name;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_TRUE(support::contains(written[i + 1], "\t" + rows[i] + "\t")) << written[i + 1];
    }
  }
}

TEST_F(SimulationOfFiles, WritesNoFile) {
  Simulation simulation = open(support::full_case());
  simulation.run_until(1.0);
  EXPECT_TRUE(std::filesystem::is_empty(folder.file("out")));
  EXPECT_FALSE(folder.has("log.txt"));
  EXPECT_FALSE(folder.has("sections.txt"));
}

TEST_F(SimulationOfFiles, OfTheSameArraysHasTheSameBits) {
  for (const quillmere::Scheme scheme : {quillmere::Scheme::LHLLC, quillmere::Scheme::HLL2}) {
    expect_the_same_from_arrays(scheme);
  }
}

TEST(SimulationTime, StepsToATimeAndNoFurtherThanTheEnd) {
  quillmere::Case contents = pool();
  contents.t_start = 2.0;
  contents.t_end = 5.0;
  Simulation simulation(contents);
  EXPECT_EQ(simulation.time(), 2.0);
  const double step = simulation.time_step();
  simulation.run_until(3.0);
  EXPECT_GE(simulation.time(), 3.0);
  EXPECT_LT(simulation.time(), 3.0 + 1.01 * step);
  EXPECT_FALSE(simulation.is_complete());
  simulation.run_until(1e9);
  EXPECT_TRUE(simulation.is_complete());
  EXPECT_LT(simulation.time(), 5.0 + 1.01 * step);
  EXPECT_EQ(simulation.steps(), std::lround((simulation.time() - 2.0) / step));
  EXPECT_THROW(simulation.step(), quillmere::Error);
}

TEST(SimulationOfArrays, MakesTheEdgesBetweenItsCells) {
  quillmere::Case contents = pool(3, 2);
  const std::vector<quillmere::Edge> edges = contents.edges;
  EXPECT_EQ(edges.size(), 23U);  // 9 along x, 8 along y, 6 diagonals
  EXPECT_EQ(std::count_if(edges.begin(), edges.end(),
                          [](const auto& edge) { return edge.kind == EdgeKind::wall; }),
            10);
  contents.edges.clear();
  Simulation simulation(contents);
  EXPECT_EQ(simulation.number_of_edges(), 23);
  EXPECT_TRUE(simulation.take_warnings().empty());
}

TEST(SimulationOfArrays, MakesTheSameEdgesOfCellsThatRunClockwise) {
  quillmere::Case contents = pool(3, 2);
  for (std::size_t i = 0; i < contents.cell_nodes.size(); i += 3) {
    std::swap(contents.cell_nodes[i], contents.cell_nodes[i + 1]);
  }
  contents.edges.clear();
  EXPECT_TRUE(Simulation(contents).take_warnings().empty());
}

TEST(SimulationOfArrays, TakesCellsOfAnyNumberOfNodes) {
  quillmere::Case contents;
  contents.t_end = 1.0;
  contents.x = {0.0, 1.0, 1.0, 0.0, 2.0};
  contents.y = {0.0, 0.0, 1.0, 1.0, 0.5};
  contents.z = {0.0, 0.0, 0.0, 0.0, 0.0};
  contents.cell_nodes = {0, 1, 2, 3, 1, 4, 2};
  contents.first_node = {0, 4, 7};
  contents.level = {1.0, 1.0};
  Simulation simulation(contents);
  EXPECT_EQ(simulation.number_of_cells(), 2);
  EXPECT_EQ(simulation.number_of_edges(), 6);
  EXPECT_DOUBLE_EQ(simulation.areas()[0], 1.0);
  EXPECT_DOUBLE_EQ(simulation.areas()[1], 0.5);
}

TEST(SimulationOfArrays, FindsTheCellsOfPoints) {
  const Simulation simulation(pool(3, 2));
  EXPECT_EQ(simulation.number_of_cells(), 12);
  EXPECT_EQ(simulation.cell_at(0.7, 0.3), 0);
  EXPECT_EQ(simulation.cell_at(0.3, 0.7), 1);
  EXPECT_EQ(simulation.cell_at(2.6, 1.2), 10);
  EXPECT_EQ(simulation.cell_at(9.0, 9.0), -1);
}

TEST(SimulationFields, AreThoseOfTheRegistry) {
  ASSERT_EQ(std::size(all_fields) + std::size(maxima_fields), fields::field_table.size());
  std::size_t k = 0;
  const auto expect_next = [&](quillmere::Field field, bool is_of_maxima) {
    EXPECT_EQ(static_cast<std::size_t>(field), k);
    EXPECT_EQ(static_cast<std::size_t>(fields::field_table[k].field), k);
    EXPECT_EQ(fields::is_of_maxima(fields::field_table[k]), is_of_maxima);
    ++k;
  };
  for (const quillmere::Field field : all_fields) expect_next(field, false);
  for (const quillmere::Field field : maxima_fields) expect_next(field, true);
}
