// The sediments of a case: their parameters in the log, and checks of what they can mean.
#pragma once

#include <ostream>
#include <vector>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

void log_sediments(std::ostream& log, const SedimentParameters& sediment);

/// Whether a cell has any, of their thicknesses, m.
bool has_sediment(const std::vector<double>& thickness);

/// Refuses parameters with which no sediment can be computed, of a case with sediment in some cell
/// or in none.
void check_sediments(const SedimentParameters& sediment, bool has_sediment, bool has_friction,
                     Diagnostics& diagnostics);

}  // namespace cases
