#include "domain/limiting_cell.hpp"

#include <vector>

#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"

namespace {

using fields::Field;

std::vector<double> values_of(const fields::Flow& flow, const cases::Case& contents, Field field) {
  std::vector<double> values(cases::at(contents.mesh.n_cells()));
  flow.read(field, values);
  return values;
}

}  // namespace

cases::Number limiting_cell(const fields::Flow& flow, const cases::Case& contents) {
  cases::Number slowest = -1, smallest = -1;
  double step = physics::unbounded_step, smallest_length = 0.0;
  bool has_dry_cell = false;
  const std::vector<double> h = values_of(flow, contents, Field::depth),
                            qx = values_of(flow, contents, Field::discharge_x),
                            qy = values_of(flow, contents, Field::discharge_y);
  for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const std::size_t i = cases::at(cell);
    if (!physics::is_finite_state(h[i], qx[i], qy[i])) return cell;
    const double length = contents.mesh.geometry_of(cell).char_length();
    const double of_cell = physics::stable_step(h[i], qx[i], qy[i], length, contents.zero_depth);
    if (of_cell < step) {
      step = of_cell;
      slowest = cell;
    }
    if (h[i] <= contents.zero_depth) has_dry_cell = true;
    if (smallest < 0 || length < smallest_length) {
      smallest = cell;
      smallest_length = length;
    }
  }
  // Dry cells bound the step by the smallest cell of the mesh.
  const double dry_step =
      physics::stable_step_dry(smallest_length, flow.scales().h0, contents.zero_depth);
  const bool dry_cells_limit = has_dry_cell && dry_step < step;
  return slowest < 0 || dry_cells_limit ? smallest : slowest;
}
