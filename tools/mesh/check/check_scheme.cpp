#include "mesh/check/check_scheme.hpp"

#include <cmath>
#include <string>

#include "case/schemes.hpp"
#include "mesh/check/numbers.hpp"
#include "utils/counted.hpp"

namespace tools::check {

namespace {

using cases::at;

/// Slope of the bed from the centre of one cell to that of another.
double slope_between(const CellValues& a, const CellValues& b) {
  const double distance = std::hypot(a.center.x - b.center.x, a.center.y - b.center.y);
  return distance > 0.0 ? std::fabs(a.bed - b.bed) / distance : 0.0;
}

bool is_first_scheme(const DataFile& data) {
  const auto* const scheme = data.flux_scheme ? cases::find_scheme(*data.flux_scheme) : nullptr;
  return scheme != nullptr && !cases::is_hll(scheme->scheme);
}

/// Inner edges across which the bed falls by more than the first scheme bears.
struct SteepEdges {
  long looked_at = 0, steep = 0;
  double slope_of_worst = 0.0;
  std::size_t worst = 0;

  /// Looks at the edges of which `is_meant(left cell, right cell)`.
  template <class IsMeant>
  SteepEdges(const cases::Mesh& mesh, const std::vector<CellValues>& cells,
             const IsMeant& is_meant) {
    constexpr double steepest = 0.01;  // measured: docs/behaviour.md
    for (std::size_t edge = 0; edge < mesh.left.size(); ++edge) {
      if (mesh.right[edge] < 0) continue;
      const std::size_t left = at(mesh.left[edge]), right = at(mesh.right[edge]);
      if (!is_meant(left, right)) continue;
      ++looked_at;
      const double slope = slope_between(cells[left], cells[right]);
      if (!(slope > steepest)) continue;
      ++steep;
      if (slope > slope_of_worst) {
        slope_of_worst = slope;
        worst = edge;
      }
    }
  }
  /// "falls by more than 1 % across 3 edges of 24 (by 5 % between the cells 1 and 2)".
  std::string text(const cases::Mesh& mesh) const {
    return "falls by more than 1 % across " + utils::counted(steep, "edge") + " of " +
           std::to_string(looked_at) + " (by " + rounded(100.0 * slope_of_worst) +
           " % between the cells " + std::to_string(mesh.left[worst]) + " and " +
           std::to_string(mesh.right[worst]) + ")";
  }
};

void check_rain_on_slopes(const CheckedCase& checked, const std::vector<CellValues>& cells,
                          const std::string& advice, Findings& findings) {
  const std::vector<int>& rain = checked.contents.fields.rain;
  if (rain.empty()) return;
  const cases::Mesh& mesh = checked.contents.mesh;
  const SteepEdges edges(mesh, cells, [&rain](std::size_t left, std::size_t right) {
    return rain[left] >= 0 || rain[right] >= 0;
  });
  if (edges.steep == 0) return;
  findings.warning("steep rain", "it rains on ground that " + edges.text(mesh) +
                                     ": there LHLLC lets depths fall below zero and sheds more "
                                     "water than falls" +
                                     advice);
}

void check_dry_depth_on_slopes(double zero_depth, const cases::Mesh& mesh,
                               const std::vector<CellValues>& cells, const std::string& advice,
                               Findings& findings) {
  constexpr double enough = 0.001;  // m; measured: docs/behaviour.md
  if (!(zero_depth < enough)) return;
  const SteepEdges edges(mesh, cells, [](std::size_t, std::size_t) { return true; });
  if (edges.steep == 0) return;
  findings.warning("thin films",
                   "\"zero depth value\" is " + number(zero_depth) + " m, and the ground " +
                       edges.text(mesh) +
                       ": expected 0.001 m or more, as LHLLC lets films that thin fall "
                       "below zero there" +
                       advice);
}

}  // namespace

void check_scheme(const DataFile& data, const CheckedCase& checked,
                  const std::vector<CellValues>& cells, Findings& findings) {
  if (!is_first_scheme(data)) return;
  const std::string advice = std::string("; \"") +
                             cases::positive_scheme(data.has_sediments()).name + "\" does not";
  check_rain_on_slopes(checked, cells, advice, findings);
  check_dry_depth_on_slopes(data.zero_depth, checked.contents.mesh, cells, advice, findings);
}

}  // namespace tools::check
