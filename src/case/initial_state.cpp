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

double largest_initial_depth(const Case& contents) {
  double largest = 0.0;
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const double h = initial_water_of(contents, cell).h;
    if (h > largest) largest = h;
  }
  return largest;
}

double smallest_char_length(const Mesh& mesh) {
  double smallest = 1e20;
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const double length = mesh.geometry_of(cell).char_length();
    if (length < smallest) smallest = length;
  }
  return smallest;
}

}  // namespace cases
