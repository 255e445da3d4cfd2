#include "engine/host/SoilDemand.hpp"

#include <algorithm>

namespace engine {

void SoilDemand::resize(const Tables& tables, std::size_t cells) {
  if (tables.soils.empty()) return;
  demand_.assign(cells, 0.0);
  infiltrated_before_.assign(cells, 0.0);
}

const double* SoilDemand::find(int patch, Tables& tables, const Loops& loops,
                               const std::vector<physics::SoilStep>& soil_steps, StepNotes* notes) {
  if (tables.soils_of_patch.empty() || tables.soils_of_patch[at(patch)].empty()) return nullptr;
  const Range cells = tables.patches.patches[at(patch)].cells;
  const kernels::CellColumns columns = tables.columns();
  const double* const infiltrated = columns.infiltrated + cells.begin;
  if (notes != nullptr) std::copy_n(infiltrated, cells.size(), infiltrated_before_.begin());
  std::fill_n(demand_.begin(), cells.size(), 0.0);
  for (const int s : tables.soils_of_patch[at(patch)]) {
    const SoilRange range = {cells.begin, cells.end, s, demand_.data()};
    const Soil& soil = tables.soils[at(s)];
    if (soil.is_green_ampt) {
      loops.green_ampt(columns, range, soil.green_ampt, soil_steps[at(s)]);
    } else {
      loops.horton(columns, range, soil.horton, soil_steps[at(s)]);
    }
  }
  if (notes != nullptr) {
    double* const recovered = notes->recovered.data() + cells.begin;
    for (int k = 0; k < cells.size(); ++k) {
      recovered[k] += infiltrated_before_[at(k)] - infiltrated[k];
    }
  }
  return demand_.data();
}

}  // namespace engine
