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

std::vector<double> bed_levels_of(const Case& contents) {
  std::vector<double> bed;
  bed.reserve(at(contents.mesh.n_cells()));
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    bed.push_back(bed_level_of(contents, cell));
  }
  return bed;
}

bool nodes_make_bed(const Case& contents) {
  return contents.fields.bed.empty() && contents.fields.sediment.empty();
}

physics::InitialWater initial_water_of(const Case& contents, Number cell) {
  const CellFields& fields = contents.fields;
  return physics::initial_water(fields.level[at(cell)], bed_level_of(contents, cell),
                                fields.qx[at(cell)], fields.qy[at(cell)], contents.zero_depth);
}

}  // namespace cases
