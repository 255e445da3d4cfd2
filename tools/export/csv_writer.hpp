// Gauges and sections as CSV: a header with units, a comma between values, nothing for "nan".
#pragma once

#include <string>

#include "case/Case.hpp"
#include "export/CaseFiles.hpp"

namespace exports {

/// What the case asks for, with the paths of the results and the coordinates of before import took
/// an origin from them. Refuse a case that asks for none.
cases::GaugeRequest read_gauge_list(const CaseFiles& files);
cases::SectionRequest read_section_list(const CaseFiles& files);

/// Time, and depth and unit discharges of every gauge, counted from 1.
void write_gauges_csv(const CaseFiles& files, const std::string& output);
/// Number and coordinates of every gauge, as a layer of points.
void write_gauge_points_csv(const CaseFiles& files, const std::string& output);
/// Time and discharge of every section, counted from 1.
/// The maxima of the flow, a row per cell; what has not been is empty.
void write_maxima_csv(const CaseFiles& files, const std::string& output);
void write_sections_csv(const CaseFiles& files, const std::string& output);

}  // namespace exports
