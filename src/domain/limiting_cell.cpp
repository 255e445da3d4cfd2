#include "domain/limiting_cell.hpp"

#include "physics/stable_step.hpp"

cases::Number limiting_cell(const fields::Flow& flow, const cases::Case& contents) {
  const fields::BoundsSeen bounds = flow.looks(contents)->bounds();
  if (bounds.not_finite >= 0) return bounds.not_finite;
  // Dry cells bound the step by the smallest cell of the mesh.
  const double dry_step =
      physics::stable_step_dry(bounds.length, flow.scales().h0, contents.zero_depth);
  const bool dry_cells_limit = bounds.has_dry_cell && dry_step < bounds.step;
  return bounds.slowest < 0 || dry_cells_limit ? bounds.smallest : bounds.slowest;
}
