// What surrounds a cell that failed: its own state, those of its neighbours, and the fluxes through
// all their edges.
#pragma once

#include <nlohmann/json.hpp>

class PhysicalModel;

/// "cells", the cell first, and "edges" of these cells. The fluxes are those of the present states:
/// they are computed into the slots of the objects, which the next step overwrites. The objects
/// must be up to date.
nlohmann::ordered_json surroundings_of(PhysicalModel& model, int cell);
