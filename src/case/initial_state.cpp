#include "case/initial_state.hpp"

namespace cases {

double bed_rock_of(const Case& contents, Number cell) {
  const std::vector<double>& bed = contents.fields.bed;
  return bed.empty() ? contents.mesh.center_of(cell).z : bed[at(cell)];
}

double bed_level_of(const Case& contents, Number cell) {
  const std::vector<double>& sediment = contents.fields.sediment;
  const double rock = bed_rock_of(contents, cell);
  return sediment.empty() ? rock : rock + sediment[at(cell)];
}

physics::InitialWater initial_water_of(const Case& contents, Number cell) {
  const CellFields& fields = contents.fields;
  return physics::initial_water(fields.level[at(cell)], bed_level_of(contents, cell),
                                fields.qx[at(cell)], fields.qy[at(cell)], contents.zero_depth);
}

}  // namespace cases
