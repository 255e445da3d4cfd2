// Writes a case folder that runs as it is.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "mesh/boundaries.hpp"
#include "mesh/edges.hpp"
#include "mesh/mesh.hpp"
#include "mesh/sections.hpp"

namespace mesh_import {

/// A point at which the flow is recorded.
struct Gauge {
  Node place;
  std::string name;  // empty without one
};

/// Everything of a case, before its numbers are rounded to what its files hold. What is empty is
/// left out of it.
struct Case {
  std::string name;
  std::string
      epoch;         // date and hour of the time 0 s, UTC; its reference system is that of the mesh
  double end = 0.0;  // s
  double courant = 0.0;
  cases::Scheme scheme = cases::Scheme::lhllc;
  double envelope_interval = 0.0;    // s
  double recording_interval = 0.0;   // of gauges and sections, s
  std::vector<double> snapshots;     // s
  double arrival_depth = 0.0;        // of the maxima of the flow, m
  std::optional<double> zero_depth;  // m
  std::optional<Node> origin;        // what is taken from all coordinates
  Mesh mesh;
  std::vector<Edge> edges;
  Boundaries boundaries;
  std::vector<Section> sections;
  std::vector<Gauge> gauges;

  std::vector<double> level;  // a cell is dry where it is not above the bed
  std::vector<double> bed;
  std::vector<double> friction;
  std::vector<double> sediment;
  cases::SedimentParameters sediments;
  std::vector<cases::Hyetogram> hyetograms;
  std::vector<int> rain;  // of a cell, index into hyetograms, or -1
  std::vector<cases::Soil> soils;
  std::vector<int> soil;
  std::map<std::string, std::string> given_texts;  // of files that the case keeps to the byte
};

/// Whether a new case may take the place of files that are there.
enum class Overwrite { no, yes };

/// Creates the folder and writes the case. The data file comes last, so that a case that could not
/// be completed does not run. With `Overwrite::yes` the results of the case that was there are
/// removed; answers how many. Throws tools::Error, also where the case would replace a file that it
/// may not.
std::size_t write_case(const Case& imported, const std::string& folder, Overwrite overwrite);

}  // namespace mesh_import
