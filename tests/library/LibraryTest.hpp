// What the tests of the library share: cases in files and in arrays, and looks at simulations.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "quillmere/simulation.hpp"
#include "support/Case.hpp"
#include "support/TemporaryFolder.hpp"

inline constexpr quillmere::Field all_fields[] = {quillmere::Field::depth,
                                                  quillmere::Field::discharge_x,
                                                  quillmere::Field::discharge_y,
                                                  quillmere::Field::largest_depth,
                                                  quillmere::Field::infiltrated_depth,
                                                  quillmere::Field::bed_level,
                                                  quillmere::Field::sediment_thickness,
                                                  quillmere::Field::bed_load_x,
                                                  quillmere::Field::bed_load_y};

inline constexpr quillmere::Field maxima_fields[] = {
    quillmere::Field::peak_depth,      quillmere::Field::peak_level,
    quillmere::Field::peak_speed,      quillmere::Field::peak_discharge,
    quillmere::Field::time_of_peak,    quillmere::Field::arrival_time,
    quillmere::Field::time_under_water};

/// All that can be seen of a simulation, bit for bit.
using Sight = std::pair<std::vector<double>, std::vector<std::vector<double>>>;

inline Sight sight_of(const quillmere::Simulation& simulation) {
  Sight sight = {{simulation.time(), simulation.time_step()}, {}};
  for (const quillmere::Field field : all_fields) sight.second.push_back(simulation.read(field));
  return sight;
}

inline void take_steps(quillmere::Simulation& simulation, int count) {
  for (int i = 0; i < count; ++i) simulation.step();
}

inline double volume_of(const quillmere::Simulation& simulation) {
  const std::vector<double> areas = simulation.areas();
  const std::vector<double> depths = simulation.read(quillmere::Field::depth);
  return std::inner_product(areas.begin(), areas.end(), depths.begin(), 0.0);
}

/// Water of a level between walls, over a flat bed of nx x ny squares of 1 m, each cut into two
/// triangles that run counter-clockwise.
inline quillmere::Case pool(int nx = 6, int ny = 4, double level = 1.0) {
  quillmere::Case pool;
  pool.t_end = 1e3;
  pool.zero_depth = 1e-3;
  const auto node = [&](int i, int j) { return j * (nx + 1) + i; };
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      pool.x.push_back(i);
      pool.y.push_back(j);
      pool.z.push_back(0.0);
    }
  }
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      const int a = node(i, j), b = node(i + 1, j), c = node(i + 1, j + 1), d = node(i, j + 1);
      pool.cell_nodes.insert(pool.cell_nodes.end(), {a, b, c, a, c, d});
    }
  }
  pool.level.assign(pool.cell_nodes.size() / 3, level);
  pool.edges = quillmere::edges_between(pool);
  return pool;
}

/// The edges of a pool at x = 0.
inline std::vector<int> western_edges(const quillmere::Case& pool) {
  std::vector<int> edges;
  for (std::size_t e = 0; e < pool.edges.size(); ++e) {
    const auto x = [&](int node) { return pool.x[static_cast<std::size_t>(node)]; };
    if (x(pool.edges[e].node1) == 0.0 && x(pool.edges[e].node2) == 0.0) {
      edges.push_back(static_cast<int>(e));
    }
  }
  return edges;
}

/// A pool that is open in the west.
inline quillmere::Case open_pool(quillmere::EdgeKind kind, double value, int series = -1) {
  quillmere::Case open = pool();
  for (const int e : western_edges(open)) {
    quillmere::Edge& edge = open.edges[static_cast<std::size_t>(e)];
    edge.kind = kind;
    edge.value = value;
    edge.series = series;
  }
  return open;
}

/// Tests of cases in files, which are read from the folder of the case.
class LibraryFiles : public testing::Test {
 protected:
  LibraryFiles() { std::filesystem::current_path(folder.path()); }
  ~LibraryFiles() override { std::filesystem::current_path(start_); }

  quillmere::Simulation open(const support::Case& c, int threads = 1) {
    c.write(folder);
    return quillmere::Simulation::open("data.json", {.threads = threads});
  }
  /// The text of the Error with which a case is refused.
  std::string refusal_of(const support::Case& c) {
    try {
      open(c);
    } catch (const quillmere::Error& error) {
      return error.what();
    }
    return "";
  }

  support::TemporaryFolder folder;

 private:
  std::filesystem::path start_ = std::filesystem::current_path();
};

/// A bed of sand under a wave, between an inflow and an open side.
inline support::Case sand_case(int nx = 4, int ny = 3) {
  support::Case c;
  c.nx = nx;
  c.ny = ny;
  c.initial = [](double x, double) { return support::InitialState{x < 2.0 ? 1.2 : 0.9, 0.3}; };
  c.west = "-3 -0.5";
  c.east = "-2";
  c.data["model"]["name"] = "Bramsett";
  c.add_friction(c.per_cell("0.03"));
  c.files["layer.txt"] = c.per_cell("0.2");
  c.data["model"]["conditions"]["initial sediments level"] = "layer.txt";
  c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.002},
                                   {"sediments density", 2.65},
                                   {"sediments friction coefficient", 0.03},
                                   {"sediments porosity", 0.4}};
  c.set_times(0.0, 50.0);
  return c;
}
