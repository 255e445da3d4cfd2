// What surrounds a cell that failed: its own state, those of its neighbours, and the fluxes through
// all their edges.
#pragma once

#include <nlohmann/json.hpp>

#include "case/Case.hpp"
#include "fields/Flow.hpp"

/// "cells", the cell first, and "edges" of these cells. The fluxes are those of the states at t
/// (s).
nlohmann::ordered_json surroundings_of(const fields::Flow& flow, const fields::Ground& ground,
                                       const cases::Case& contents, double t, cases::Number cell);
