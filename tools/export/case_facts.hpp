// A case in numbers, for its report.
#pragma once

#include <nlohmann/json.hpp>

#include "export/CaseResults.hpp"

namespace exports {

/// Mesh, model, boundaries with their series, rain, and the names of gauges and sections. SI units.
nlohmann::json case_facts(const CaseResults& results);

}  // namespace exports
