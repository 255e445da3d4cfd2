// Writes a case folder that runs as it is.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mesh/boundaries.hpp"
#include "mesh/edges.hpp"
#include "mesh/mesh.hpp"
#include "mesh/sections.hpp"

namespace mesh_import {

/// Sediments of the whole case; densities relative to water.
struct SedimentParameters {
  double grain_diameter = 0.0;  // m
  double density = 0.0;
  double porosity = 0.0;
};

/// Everything of a case. What is empty is left out of it.
struct Case {
  std::string name;
  double end = 0.0;  // s
  double courant = 0.0;
  double envelope_interval = 0.0;    // s
  double recording_interval = 0.0;   // of gauges and sections, s
  std::vector<double> snapshots;     // s
  std::optional<double> zero_depth;  // m
  std::optional<Node> origin;        // what is taken from all coordinates
  Mesh mesh;
  std::vector<Edge> edges;
  Boundaries boundaries;
  std::vector<Section> sections;
  std::vector<Node> gauges;

  std::vector<double> level;  // a cell is dry where it is not above the bed
  std::vector<double> bed;
  std::vector<double> friction;
  std::vector<double> sediment;
  SedimentParameters sediments;
  std::vector<int> rain;  // IDs; negative for none
  std::string rain_file;  // text of the hyetograms
  std::vector<int> soil;
  std::string soil_file;
};

/// Creates the folder and writes the case. The data file comes last, so that a case that could not
/// be completed does not run. Throws tools::Error.
void write_case(const Case& contents, const std::string& folder);

}  // namespace mesh_import
