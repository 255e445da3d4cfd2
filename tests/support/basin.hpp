// A basin with everything that a case can have, as arrays.
#pragma once

#include <random>

#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/case_of.hpp"

namespace support {

inline constexpr double basin_t_end = 5.0;  // s

struct BasinOptions {
  bool sediments = false, friction = true, rain = true, soils = true;
  bool mostly_dry = false;
};

inline void add_state_of_basin(cases::CellFields& fields, const BasinOptions& options, double level,
                               std::mt19937& generator) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  fields.level.push_back(level);
  fields.qx.push_back(unit(generator) - 0.5);
  fields.qy.push_back(unit(generator) - 0.5);
  if (options.friction) fields.manning.push_back(0.02 + 0.01 * unit(generator));
  if (options.sediments) fields.sediment.push_back(unit(generator) > 0.2 ? 0.1 : 0.0);
  if (options.soils) fields.infiltrated.push_back(0.002 * unit(generator));
}

/// Wet and dry cells over a rough bed, with many kinds of boundaries.
inline cases::Case basin(const BasinOptions& options, const TemporaryFolder& folder) {
  std::mt19937 generator(3);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  const RunGlobals globals(1e-3, 1.0, basin_t_end);
  Rectangle rectangle{26, 14, 13.0, 7.0};
  rectangle.west = {edge_code::hydrograph, 0.0, folder.write("q.txt", "3 0 -0.2 1 -0.9 4 0.1")};
  rectangle.east = {edge_code::limnigraph, 0.0, folder.write("l.txt", "3 0 0.9 1 1.2 4 0.7")};
  rectangle.south = {edge_code::wall};
  rectangle.north = {edge_code::water_level, 0.8};
  if (options.mostly_dry) rectangle.east = rectangle.north = {edge_code::transmissive};
  cases::Case contents = case_of(
      *build_rectangle<SWE>(rectangle, [&](double, double) { return 0.6 * unit(generator); }));
  contents.has_sediments = options.sediments;
  contents.sediment = {0.8e-3, 2.65, 0.02, 0.42};
  contents.fields = {};
  for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const bool is_west = contents.mesh.center_of(cell).x < 1.0;
    const bool is_wet = options.mostly_dry ? is_west : unit(generator) > 0.3;
    add_state_of_basin(contents.fields, options, is_wet ? 0.4 + 0.8 * unit(generator) : -1.0,
                       generator);
    if (options.rain) contents.fields.rain.push_back(cell % 3 == 0 ? 1 : 0);
    if (options.soils) contents.fields.soil.push_back(cell % 4 - 2 < 0 ? -1 : cell % 4 - 2);
  }
  contents.rain = {{1, 2, {0.0, 0.7, 1.9}, {2e-3, 0.0, 5e-3}}, {2, 1, {0.0, 1.1}, {1e-5, 3e-4}}};
  contents.soils = {{1, cases::GreenAmptParameters{3e-5, 0.11, 0.2, 0.45, 0.02, 1e-3}},
                    {2, cases::HortonParameters{1e-4, 1e-5, 20.0, 0.01, 0.0}}};
  return contents;
}

}  // namespace support
