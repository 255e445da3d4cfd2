// Cells as a report names them.
#pragma once

#include <nlohmann/json.hpp>

#include "model/ComputationalCell.hpp"

/// Number and centre.
nlohmann::ordered_json place_of(const ComputationalCell& cell);

/// Speed of a state, m/s; 0 without water.
double speed_of(const HydraulicVariableSWE& state);
