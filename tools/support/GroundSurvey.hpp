// What is odd about the ground of a mesh: degrees for metres, slopes, a terrain that was forgotten.
#pragma once

#include <array>
#include <limits>
#include <string>
#include <vector>

namespace tools {

/// Coordinates and elevation, m.
struct GroundPoint {
  double x, y, z;
};

class GroundSurvey {
 public:
  void add_node(const GroundPoint& node);
  /// Adds a cell by three of its corners.
  void add_cell(const std::array<GroundPoint, 3>& corners);

  struct Remark {
    std::string kind;  ///< a few words that name the diagnosis
    std::string text;  ///< without a full stop
  };
  /// One remark for each oddity.
  std::vector<Remark> remarks() const;

 private:
  bool looks_like_degrees() const;
  bool is_flat_land() const;

  static constexpr double none = std::numeric_limits<double>::infinity();
  GroundPoint low_{none, none, none}, high_{-none, -none, -none};
  long cells_ = 0, half_steep_ = 0, steep_ = 0;
  double steepest_ = 0.0;
  GroundPoint steepest_at_{};
};

}  // namespace tools
