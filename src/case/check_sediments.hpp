// The sediments of a case: their parameters in the log, and checks of what they can mean.
#pragma once

#include <ostream>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

void log_sediments(std::ostream& log, const SedimentParameters& sediment);

/// Refuses parameters with which no sediment can be computed.
void check_sediments(const Case& contents, Diagnostics& diagnostics);

}  // namespace cases
