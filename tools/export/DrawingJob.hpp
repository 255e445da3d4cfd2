// What the script is to draw of a case.
#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"
#include "export/DrawingFolder.hpp"
#include "export/SnapshotReader.hpp"
#include "export/crs.hpp"
#include "export/quantities.hpp"

namespace exports {

/// How maps and curves look.
struct DrawingStyle {
  std::optional<double> dry_depth;             ///< in place of the case's, m
  std::vector<double> classes;                 ///< bounds between colours, increasing; or empty
  bool has_logarithmic_classes = false;        ///< bounds 1, 2, 5, 10, ... in place of given ones
  std::optional<std::array<double, 2>> range;  ///< of the colours; none: that of the values
  std::optional<Extent> extent;                ///< of the maps; none: that of the mesh
  std::optional<Crs> crs;
  bool has_arrows = false;  ///< of the flow, on maps of snapshots
  bool has_places = true;   ///< gauges and sections, on maps
  int dpi = 200;            ///< pixels per inch
  std::string title;        ///< empty for the usual one
  bool has_titles = true;
};

class DrawingJob {
 public:
  DrawingJob(const CaseResults& results, const DrawingStyle& style);

  /// A map into a file of the folder. `snapshot`, from which it is, is needed for arrows.
  void add_map(const MapField& field, const std::string& picture,
               const Snapshot* snapshot = nullptr);
  void add_gauges(const std::string& picture);
  void add_sections(const std::string& picture);

  /// Depth up to which a cell shows nothing, m.
  double dry_depth() const { return style_.dry_depth.value_or(results_.files.dry_depth); }
  const DrawingFolder& folder() const { return folder_; }
  /// For what else the script is to know.
  nlohmann::json& document() { return job_; }

  /// Draws everything, and warns of depths below zero.
  void draw();

 private:
  const CaseResults& results_;
  const DrawingStyle& style_;
  DrawingFolder folder_;
  nlohmann::json job_;
  BelowZero below_zero_;
};

}  // namespace exports
