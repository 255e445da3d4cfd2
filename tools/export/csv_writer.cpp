#include "export/csv_writer.hpp"

#include <cmath>
#include <filesystem>
#include <limits>

#include "case/read_requests.hpp"
#include "export/TableReader.hpp"
#include "export/run_log.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "utils/TextBuffer.hpp"
#include "utils/TextScanner.hpp"

namespace exports {

namespace {

/// Copies the rows of a table, one after the other.
void copy_rows(TableReader& table, std::size_t columns, std::ostream& out) {
  std::vector<double> row(columns);
  utils::TextBuffer line;
  while (table.next_row(row)) {
    line.clear();
    for (std::size_t k = 0; k < columns; ++k) {
      if (k > 0) line << ',';
      if (!std::isnan(row[k])) line << row[k];
    }
    line << '\n';
    out << line.text();
  }
}

}  // namespace

cases::GaugeRequest read_gauge_list(const CaseFiles& files) {
  if (!files.gauges) throw tools::Error(files.data_file + " asks for no gauges.");
  utils::TextScanner file(*files.gauges);
  cases::GaugeRequest gauges = cases::read_gauges(file);
  gauges.result = files.result(gauges.result);
  for (physics::PlanPoint& point : gauges.points) {
    point = {point.x + files.origin[0], point.y + files.origin[1]};
  }
  return gauges;
}

cases::SectionRequest read_section_list(const CaseFiles& files) {
  if (!files.sections) throw tools::Error(files.data_file + " asks for no discharges.");
  utils::TextScanner file(*files.sections);
  cases::SectionRequest sections =
      cases::read_sections(file, std::numeric_limits<cases::Number>::max());
  // The simulator writes it in its working directory, not in the output folder.
  sections.result = (std::filesystem::path(files.folder) / sections.result).string();
  return sections;
}

void write_gauges_csv(const CaseFiles& files, const std::string& output) {
  const cases::GaugeRequest list = read_gauge_list(files);
  RunLog(files).expect_of_run(list.result);
  TableReader table(list.result, TableReader::Missing::allowed);
  std::string_view header;
  table.next_line(header);
  if (header.substr(0, 9) != "time [s]\t") {
    table.refuse(": expected a header that begins with \"time [s]\".");
  }
  tools::PartialStream file(output);
  file.stream() << "time (s)";
  for (std::size_t i = 1; i <= list.points.size(); ++i) {
    const std::string gauge = ",gauge " + std::to_string(i);
    file.stream() << gauge << " depth (m)" << gauge << " unit discharge x (m2/s)" << gauge
                  << " unit discharge y (m2/s)";
  }
  file.stream() << '\n';
  copy_rows(table, 1 + 3 * list.points.size(), file.stream());
  file.commit();
}

void write_gauge_points_csv(const CaseFiles& files, const std::string& output) {
  const cases::GaugeRequest list = read_gauge_list(files);
  tools::PartialStream file(output);
  file.stream() << "gauge,x (m),y (m)\n";
  file.stream().precision(15);
  for (std::size_t i = 0; i < list.points.size(); ++i) {
    file.stream() << i + 1 << ',' << list.points[i].x << ',' << list.points[i].y << '\n';
  }
  file.commit();
}

void write_sections_csv(const CaseFiles& files, const std::string& output) {
  const cases::SectionRequest list = read_section_list(files);
  RunLog(files).expect_of_run(list.result);
  TableReader table(list.result);
  tools::PartialStream file(output);
  file.stream() << "time (s)";
  for (std::size_t s = 1; s <= list.sections.size(); ++s) {
    file.stream() << ",section " << s << " discharge (m3/s)";
  }
  file.stream() << '\n';
  copy_rows(table, 1 + list.sections.size(), file.stream());
  file.commit();
}

}  // namespace exports
