// A report of a case and its run: one HTML file that needs nothing else.
#pragma once

#include <string>

#include "export/CaseResults.hpp"
#include "export/DrawingJob.hpp"

namespace exports {

struct ReportOptions : DrawingStyle {
  std::string output;      ///< empty for the usual place
  std::string run_report;  ///< what the run wrote by --report; empty: report.json of the case's
                           ///< folder, where it is there
};

/// Writes the report, and returns its name. What the case lacks, or the run has not left, the
/// report says. Needs Python with matplotlib.
std::string write_report(const CaseResults& results, const ReportOptions& options);

}  // namespace exports
