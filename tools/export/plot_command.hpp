// Pictures of the results: maps and curves, drawn by a Python script beside the program.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"
#include "export/DrawingJob.hpp"

namespace exports {

struct PlotOptions : DrawingStyle {
  enum class What { map, gauges, sections, all };
  What what = What::map;
  std::string field = "max_depth";
  std::optional<double> time;  ///< of the snapshot, s; none for the last one
  std::string format = "png";  ///< svg or pdf
  std::string output;          ///< file, or the folder of all; empty for the usual place
};

/// Draws, and returns the names of the pictures. Needs Python with matplotlib.
std::vector<std::string> plot(const CaseResults& results, const PlotOptions& options);

}  // namespace exports
