// Warnings before the first step about what a run accepts and what hardly was meant.
#pragma once

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "case/DataFile.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

/// Times and parameters.
void warn_of_implausible_parameters(const Case& contents, Diagnostics& diagnostics);
/// Fields of the cells, boundaries, and areas that rounding has falsified.
void warn_of_implausible_fields(const Case& contents, const DataFile& data,
                                const AreaLoss& area_loss, Diagnostics& diagnostics);

}  // namespace cases
