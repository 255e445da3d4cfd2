#include "fields/TablesFlow.hpp"

#include "utils/not_hyperbolic.hpp"

namespace fields {

TablesFlow::TablesFlow(const cases::Case& contents, cases::Diagnostics& diagnostics, int threads,
                       int cells_per_patch, const engine::Processor& processor)
    : case_(contents),
      diagnostics_(diagnostics),
      engine_(contents, threads, cells_per_patch, processor),
      fields_(contents, engine_) {}

double TablesFlow::advance(const StepTimes& times) {
  const double step = engine_.advance(times);
  tell_not_hyperbolic(times.t);
  return step;
}

bool TablesFlow::advance_alone(engine::RunClock& clock, const engine::StepLimits& limits) {
  if (!engine_.advance_alone(clock, limits)) return false;
  tell_not_hyperbolic(clock.begun);
  return true;
}

void TablesFlow::tell_not_hyperbolic(double t) {
  const auto& found = engine_.not_hyperbolic();
  if (!found) return;
  diagnostics_.warn(utils::not_hyperbolic(found->place, t, found->h, found->qx, found->qy));
}

ExecutionPath TablesFlow::execution_path() const {
  return {engine_.path(), engine_.threads(), engine_.instruction_set()};
}

UnseenDepth TablesFlow::unseen_depth(cases::Number cell) const {
  const engine::UnseenDepths depths = engine_.unseen_depths(cell);
  return {depths.recovered, depths.lifted, depths.taken_discharge};
}

BoundaryInflow TablesFlow::boundary_inflow(int boundary) const {
  return engine_.boundary_inflow(boundary);
}

}  // namespace fields
