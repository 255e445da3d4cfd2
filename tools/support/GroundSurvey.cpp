#include "support/GroundSurvey.hpp"

#include <algorithm>
#include <cmath>

#include "utils/number_text.hpp"

namespace tools {

namespace {

constexpr double half_steep = 1.0, steep = 3.0;  // fall by length

/// Slope of the plane through three points; infinite where it stands upright.
double slope_of(const GroundPoint& a, const GroundPoint& b, const GroundPoint& c) {
  const double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
  const double vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
  return std::hypot(uy * vz - uz * vy, uz * vx - ux * vz) / std::fabs(ux * vy - uy * vx);
}

std::string place(double x, double y) {
  return "(" + utils::number_text(x, 12) + ", " + utils::number_text(y, 12) + ")";
}

}  // namespace

void GroundSurvey::add_node(const GroundPoint& node) {
  low_ = {std::min(low_.x, node.x), std::min(low_.y, node.y), std::min(low_.z, node.z)};
  high_ = {std::max(high_.x, node.x), std::max(high_.y, node.y), std::max(high_.z, node.z)};
}

void GroundSurvey::add_cell(const std::array<GroundPoint, 3>& corners) {
  const auto& [a, b, c] = corners;
  const double slope = slope_of(a, b, c);
  ++cells_;
  half_steep_ += slope > half_steep;
  if (!(slope > steep) || !std::isfinite(slope)) return;
  if (steep_++ > 0 && !(slope > steepest_)) return;
  steepest_ = slope;
  steepest_at_ = {(a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0, 0.0};
}

/// Whether all coordinates could be longitudes and latitudes, of a place that is small beside its
/// distance from the origin, or on which most of the ground is steep.
bool GroundSurvey::looks_like_degrees() const {
  constexpr double largest_place = 5.0, small = 0.1;
  const double size = std::max(high_.x - low_.x, high_.y - low_.y);
  const bool could_be = low_.x >= -180.0 && high_.x <= 180.0 && low_.y >= -90.0 &&
                        high_.y <= 90.0 && size <= largest_place;
  const double distance = std::hypot(high_.x + low_.x, high_.y + low_.y) / 2.0;
  return could_be && (size < small * distance || 2 * half_steep_ > cells_);
}

/// Whether a place of some size in a projected system has no relief at all.
bool GroundSurvey::is_flat_land() const {
  constexpr double some_size = 200.0, projected = 1e4;  // m
  const double size = std::max(high_.x - low_.x, high_.y - low_.y);
  const double farthest = std::max({-low_.x, high_.x, -low_.y, high_.y});
  return low_.z == high_.z && size >= some_size && farthest >= projected;
}

std::vector<GroundSurvey::Remark> GroundSurvey::remarks() const {
  std::vector<Remark> found;
  if (cells_ == 0) return found;
  if (looks_like_degrees()) {
    found.push_back({"degrees", "the coordinates run from " + place(low_.x, low_.y) + " to " +
                                    place(high_.x, high_.y) +
                                    ": are they degrees? metres of a projected system are "
                                    "expected"});
  } else if (steep_ > 0) {
    found.push_back({"slope", std::to_string(steep_) + " of " + std::to_string(cells_) +
                                  " cells are steeper than 300 %, the steepest by " +
                                  utils::number_text(100.0 * steepest_, 3) + " % at " +
                                  place(steepest_at_.x, steepest_at_.y) +
                                  ": are elevations and coordinates both in metres?"});
  }
  if (is_flat_land()) {
    found.push_back({"flat ground", "all nodes lie at " + utils::number_text(low_.z + 0.0) +
                                        " m: was the terrain forgotten? quillmere-mesh import "
                                        "--terrain takes it from a raster"});
  }
  return found;
}

}  // namespace tools
