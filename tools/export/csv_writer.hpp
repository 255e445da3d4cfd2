// Gauges and sections as CSV: a header with units, a comma between values, nothing for "nan".
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "export/CaseFiles.hpp"

namespace exports {

/// What the gauges file of a case asks for.
struct GaugeList {
  std::string result;                             ///< name of the result file
  std::vector<std::pair<double, double>> points;  ///< x and y, m
};
/// What the sections file of a case asks for.
struct SectionList {
  std::string result;                   ///< name of the result file
  std::vector<std::vector<int>> edges;  ///< of every section
};
/// Refuse a case that has none.
GaugeList read_gauge_list(const CaseFiles& files);
SectionList read_section_list(const CaseFiles& files);

/// Time, and depth and unit discharges of every gauge, counted from 1.
void write_gauges_csv(const CaseFiles& files, const std::string& output);
/// Number and coordinates of every gauge, as a layer of points.
void write_gauge_points_csv(const CaseFiles& files, const std::string& output);
/// Time and discharge of every section, counted from 1.
void write_sections_csv(const CaseFiles& files, const std::string& output);

}  // namespace exports
