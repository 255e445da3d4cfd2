// The choice of what a run steps on.
#pragma once

#include <memory>

#include "fields/Flow.hpp"
#include "model/PhysicalModel.hpp"

namespace fields {

/// The flow of a model, whose set-up must be complete: on tables if they know all that it holds and
/// the environment does not ask for the objects.
std::unique_ptr<Flow> make_flow(PhysicalModel& model);
std::unique_ptr<Flow> make_flow(PhysicalModel& model, int threads, int cells_per_patch = 0);

}  // namespace fields
