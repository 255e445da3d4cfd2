// Cells as a report names them.
#pragma once

#include <nlohmann/json.hpp>

#include "fields/Flow.hpp"

/// Number and centre.
nlohmann::ordered_json place_of(cases::Number cell, const cases::CellGeometry& geometry);

/// Speed of a state, m/s; 0 without water.
double speed_of(const fields::CellState& state);
