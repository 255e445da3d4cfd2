// The report of a check, and the facts of a case, as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "mesh/check/case_report.hpp"

namespace tools::check {

/// What is not known is null. Lengths in m, times in s, memory in bytes, angles in degrees.
nlohmann::ordered_json check_json(const CaseReport& report);
nlohmann::ordered_json info_json(const CaseReport& report);

}  // namespace tools::check
