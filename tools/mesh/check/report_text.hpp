// The report of a check, and the facts of a case, as text for the console.
#pragma once

#include <iosfwd>

#include "mesh/check/case_report.hpp"

namespace tools::check {

void write_check_text(std::ostream& out, const CaseReport& report);
void write_info_text(std::ostream& out, const CaseReport& report);

}  // namespace tools::check
