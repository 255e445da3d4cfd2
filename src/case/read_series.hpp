// Reads the file of a boundary value sampled in time.
#pragma once

#include <string>

#include "case/Case.hpp"

namespace cases {

/// The number of samples and the samples (time in s, value). At least two samples with strictly
/// increasing times, or the run ends with a message.
Series read_series(const std::string& file);

}  // namespace cases
