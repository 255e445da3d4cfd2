#include "export/below_zero.hpp"

#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace exports {

void BelowZero::add(const BelowZero& other) {
  if (other.volume > volume) *this = other;
}

void BelowZero::tell() const {
  if (cells == 0) return;
  utils::warn("depths below zero count as dry: " + utils::number_text(volume) +
              " m3 are missing in " + utils::counted(cells, "cell") +
              (time ? ", most of all times at " + utils::number_text(*time) + " s."
                    : " that never were deeper."));
}

BelowZero dry_below_zero(const Mesh& mesh, std::optional<double> time,
                         std::vector<double>& depths) {
  BelowZero found;
  found.time = time;
  for (std::size_t i = 0; i < depths.size(); ++i) {
    const double depth = depths[i];
    if (!(depth < 0.0)) continue;
    depths[i] = 0.0;
    if (depth >= rounding_of_depth) continue;
    ++found.cells;
    found.volume -= depth * mesh.area_of(i);
  }
  return found;
}

}  // namespace exports
