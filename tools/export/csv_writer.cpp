#include "export/csv_writer.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <span>
#include <utility>

#include "case/read_requests.hpp"
#include "export/MaximaTable.hpp"
#include "export/TableReader.hpp"
#include "export/below_zero.hpp"
#include "export/run_log.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "utils/TextBuffer.hpp"
#include "utils/TextScanner.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace exports {

namespace {

/// Depths of gauges below zero, which become zero.
class LowDepths {
 public:
  void dry(std::span<double> row) {
    for (std::size_t k = 1; k < row.size(); k += 3) {
      if (row[k] < rounding_of_depth) note(row[0], k / 3 + 1, row[k]);
      if (row[k] < 0.0) row[k] = 0.0;
    }
  }
  void tell() const {
    if (count_ == 0) return;
    utils::warn("depths below zero count as dry: " + utils::counted(count_, "recording") +
                " of gauges, the lowest " + utils::number_text(lowest_) + " m, of gauge " +
                std::to_string(gauge_) + " at " + utils::number_text(time_) + " s.");
  }

 private:
  void note(double time, std::size_t gauge, double depth) {
    if (count_++ > 0 && depth >= lowest_) return;
    lowest_ = depth;
    gauge_ = gauge;
    time_ = time;
  }

  std::size_t count_ = 0, gauge_ = 0;
  double lowest_ = 0.0, time_ = 0.0;
};

/// Copies the rows of a table, one after the other, as `change` leaves them.
template <class Change>
void copy_rows(TableReader& table, std::size_t columns, std::ostream& out, const Change& change) {
  std::vector<double> row(columns);
  utils::TextBuffer line;
  while (table.next_row(row)) {
    change(row);
    line.clear();
    for (std::size_t k = 0; k < columns; ++k) {
      if (k > 0) line << ',';
      if (!std::isnan(row[k])) line << row[k];
    }
    line << '\n';
    out << line.text();
  }
}

/// "m2/s" for "m2 s-1".
std::string plain_unit(std::string unit) {
  const std::size_t per = unit.find(" s-1");
  return per == std::string::npos ? unit : unit.replace(per, 4, "/s");
}

/// What the columns of gauges or sections are called: "gauge 1", or "gauge 1 (pier)" where the case
/// names all of them.
class ColumnTitles {
 public:
  ColumnTitles(std::string kind, std::vector<std::string> names, std::size_t count)
      : kind_(std::move(kind)), names_(tools::names_of_each(std::move(names), count)) {}

  /// The title of a quantity at a place, counted from 0, in quotes where it needs them.
  std::string of(std::size_t i, const std::string& quantity) const {
    const std::string name = names_[i].empty() ? "" : " (" + names_[i] + ")";
    return field(kind_ + " " + std::to_string(i + 1) + name + " " + quantity);
  }
  bool has_names() const {
    return std::any_of(names_.begin(), names_.end(),
                       [](const std::string& name) { return !name.empty(); });
  }
  std::string name(std::size_t i) const { return field(names_[i]); }

 private:
  static std::string field(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + "\"";
  }

  std::string kind_;
  std::vector<std::string> names_;
};

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
  const ColumnTitles titles("gauge", tools::read_case_names(files.folder).gauges,
                            list.points.size());
  for (std::size_t i = 0; i < list.points.size(); ++i) {
    for (const char* quantity :
         {"depth (m)", "unit discharge x (m2/s)", "unit discharge y (m2/s)"}) {
      file.stream() << ',' << titles.of(i, quantity);
    }
  }
  file.stream() << '\n';
  LowDepths low;
  copy_rows(table, 1 + 3 * list.points.size(), file.stream(),
            [&low](std::span<double> row) { low.dry(row); });
  file.commit();
  low.tell();
}

void write_gauge_points_csv(const CaseFiles& files, const std::string& output) {
  const cases::GaugeRequest list = read_gauge_list(files);
  tools::PartialStream file(output);
  const ColumnTitles titles("gauge", tools::read_case_names(files.folder).gauges,
                            list.points.size());
  file.stream() << "gauge,x (m),y (m)" << (titles.has_names() ? ",name\n" : "\n");
  file.stream().precision(15);
  for (std::size_t i = 0; i < list.points.size(); ++i) {
    file.stream() << i + 1 << ',' << list.points[i].x << ',' << list.points[i].y;
    if (titles.has_names()) file.stream() << ',' << titles.name(i);
    file.stream() << '\n';
  }
  file.commit();
}

void write_sections_csv(const CaseFiles& files, const std::string& output) {
  const cases::SectionRequest list = read_section_list(files);
  RunLog(files).expect_of_run(list.result);
  TableReader table(list.result);
  tools::PartialStream file(output);
  file.stream() << "time (s)";
  const ColumnTitles titles("section", tools::read_case_names(files.folder).sections,
                            list.sections.size());
  for (std::size_t s = 0; s < list.sections.size(); ++s) {
    file.stream() << ',' << titles.of(s, "discharge (m3/s)");
  }
  file.stream() << '\n';
  copy_rows(table, 1 + list.sections.size(), file.stream(), [](std::span<double>) {});
  file.commit();
}

void write_maxima_csv(const CaseFiles& files, const std::string& output) {
  const CaseResults results(files.data_file);
  const MaximaTable maxima = read_maxima(results);
  tools::PartialStream file(output);
  file.stream() << "cell,x (m),y (m)";
  for (const MaximaQuantity& quantity : maxima_quantities) {
    file.stream() << ',' << quantity.long_name << " (" << plain_unit(quantity.unit) << ')';
  }
  file.stream() << '\n';
  file.stream().precision(15);
  for (std::size_t i = 0; i < results.mesh.n_cells(); ++i) {
    file.stream() << i << ',' << results.mesh.center_x[i] << ',' << results.mesh.center_y[i];
    utils::TextBuffer values;
    for (const MaximaQuantity& quantity : maxima_quantities) {
      values << ',';
      const float value = maxima[quantity][i];
      if (!std::isnan(value)) values << static_cast<double>(value);
    }
    file.stream() << values.text() << '\n';
  }
  file.commit();
}

}  // namespace exports
