#include "mesh/check/check_scheme.hpp"

#include <cmath>

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

}  // namespace

void check_scheme(const DataFile& data, const CheckedCase& checked,
                  const std::vector<CellValues>& cells, Findings& findings) {
  constexpr double steepest = 0.01;  // measured: docs/behaviour.md
  const std::vector<int>& rain = checked.contents.fields.rain;
  if (rain.empty() || !is_first_scheme(data)) return;
  const cases::Mesh& mesh = checked.contents.mesh;
  long under_rain = 0, steep = 0;
  double slope_of_worst = 0.0;
  std::size_t worst = 0;
  for (std::size_t edge = 0; edge < mesh.left.size(); ++edge) {
    if (mesh.right[edge] < 0) continue;
    const std::size_t left = at(mesh.left[edge]), right = at(mesh.right[edge]);
    if (rain[left] < 0 && rain[right] < 0) continue;
    ++under_rain;
    const double slope = slope_between(cells[left], cells[right]);
    if (!(slope > steepest)) continue;
    ++steep;
    if (slope > slope_of_worst) {
      slope_of_worst = slope;
      worst = edge;
    }
  }
  if (steep == 0) return;
  findings.warning(
      "steep rain",
      "it rains on ground that falls by more than 1 % across " + utils::counted(steep, "edge") +
          " of " + std::to_string(under_rain) + " (by " + rounded(100.0 * slope_of_worst) +
          " % between the cells " + std::to_string(mesh.left[worst]) + " and " +
          std::to_string(mesh.right[worst]) +
          "): there LHLLC lets depths fall below zero and sheds more water than falls" + "; \"" +
          cases::positive_scheme(data.has_sediments()).name + "\" does not");
}

}  // namespace tools::check
