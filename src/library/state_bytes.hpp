// The state of a simulation as bytes.
#pragma once

#include "fields/Clock.hpp"
#include "fields/TablesFlow.hpp"
#include "quillmere/simulation.hpp"

namespace quillmere {

struct SavedState {
  fields::Clock clock;
  engine::State flow;
};

State bytes_of(const SavedState& state);
/// Throws an Error where the bytes are no state.
SavedState state_of(const State& bytes);

}  // namespace quillmere
