#include "domain/limiting_cell.hpp"

#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"

cases::Number limiting_cell(const fields::Flow& flow, const cases::Case& contents) {
  cases::Number slowest = -1, smallest = -1;
  double step = physics::unbounded_step, smallest_length = 0.0;
  bool has_dry_cell = false;
  for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const fields::CellState state = flow.state(cell);
    if (!physics::is_finite_state(state.h, state.qx, state.qy)) return cell;
    const double length = contents.mesh.geometry_of(cell).char_length();
    const double of_cell =
        physics::stable_step(state.h, state.qx, state.qy, length, contents.zero_depth);
    if (of_cell < step) {
      step = of_cell;
      slowest = cell;
    }
    if (state.h <= contents.zero_depth) has_dry_cell = true;
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
