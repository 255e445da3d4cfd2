// Pictures of the results: maps and curves, drawn by a Python script beside the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"

namespace exports {

struct PlotOptions {
  enum class What { map, gauges, sections, all };
  What what = What::map;
  std::string field = "max_depth";
  std::optional<double> time;       ///< of the snapshot, s; none for the last one
  std::optional<double> dry_depth;  ///< in place of the case's, m
  std::vector<double> classes;      ///< bounds between colours, increasing; empty: no classes
  std::string format = "png";       ///< svg or pdf
  std::string output;               ///< file, or the folder of all; empty for the usual place
  std::string title;                ///< empty for the usual one
};

/// Draws, and returns the names of the pictures. Needs Python with matplotlib.
std::vector<std::string> plot(const CaseResults& results, const PlotOptions& options);

}  // namespace exports
