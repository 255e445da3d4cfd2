#include "case/write_case.hpp"

#include <span>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "case/cell_files.hpp"
#include "case/data_file_text.hpp"
#include "utils/number_text.hpp"

namespace cases {

namespace {

/// A record: its words between blanks, its end at the end of the line.
class Records {
 public:
  Records& operator<<(double value) { return *this << utils::exact_text(value); }
  Records& operator<<(int value) { return *this << std::to_string(value); }
  Records& operator<<(std::size_t value) { return *this << std::to_string(value); }
  Records& operator<<(const std::string& word) {
    if (!text_.empty() && text_.back() != '\n') text_ += ' ';
    text_ += word;
    return *this;
  }
  void end() { text_ += '\n'; }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

std::string text_of_nodes(const Mesh& mesh) {
  Records records;
  (records << mesh.n_nodes()).end();
  for (std::size_t i = 0; i < mesh.x.size(); ++i) {
    (records << mesh.x[i] << mesh.y[i] << mesh.z[i]).end();
  }
  return records.text();
}

std::string text_of_cells(const Mesh& mesh) {
  Records records;
  (records << mesh.n_cells()).end();
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    records << mesh.nodes_of(cell).size();
    for (const Number node : mesh.nodes_of(cell)) records << node;
    records.end();
  }
  return records.text();
}

std::string text_of_edges(const Case& contents) {
  const Mesh& mesh = contents.mesh;
  Records records;
  (records << mesh.n_edges()).end();
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    const std::size_t i = at(edge);
    records << mesh.left[i] << mesh.right[i] << mesh.node1[i] << mesh.node2[i];
    const Boundary* const boundary = mesh.boundary_on(edge);
    records << (boundary != nullptr ? boundary->code : edge_code::interior);
    if (boundary != nullptr && boundary->series >= 0) {
      records << contents.series[at(boundary->series)].file;
    } else if (boundary != nullptr && boundary_kind(boundary->code)->has_value()) {
      records << boundary->value;
    }
    records.end();
  }
  return records.text();
}

std::string text_of_cell_file(const CellFile& file, const CellFields& fields, Number n_cells) {
  Records records;
  for (Number cell = 0; cell < n_cells; ++cell) {
    for (const CellColumn& column : file.columns()) records << (fields.*column.values)[at(cell)];
    records.end();
  }
  return records.text();
}

/// The IDs of the terms of the cells, or -1.
template <class Term>
std::string text_of_terms(const std::vector<int>& of_cells, const std::vector<Term>& terms) {
  Records records;
  for (const int term : of_cells) (records << (term < 0 ? -1 : terms[at(term)].id)).end();
  return records.text();
}

void add_pairs(std::span<const double> first, std::span<const double> second, Records& records) {
  for (std::size_t i = 0; i < first.size(); ++i) (records << first[i] << second[i]).end();
}

std::string text_of_series(const Series& series) {
  Records records;
  (records << series.times.size()).end();
  add_pairs(series.times, series.values, records);
  return records.text();
}

std::string text_of_rain(const std::vector<Hyetogram>& rain) {
  Records records;
  (records << rain.size()).end();
  for (const Hyetogram& hyetogram : rain) {
    (records << hyetogram.id << hyetogram.times.size() << hyetogram.step).end();
    add_pairs(hyetogram.times, hyetogram.intensities, records);
  }
  return records.text();
}

void add_parameters(const GreenAmptParameters& soil, Records& records) {
  records << "GreenAmpt" << soil.Ks << soil.psi << soil.theta_i << soil.theta_s << soil.L
          << soil.kr;
}

void add_parameters(const HortonParameters& soil, Records& records) {
  records << "Horton" << soil.f0 << soil.fc << soil.k << soil.Fmax << soil.kr;
}

std::string text_of_soils(const std::vector<Soil>& soils) {
  Records records;
  (records << soils.size()).end();
  for (const Soil& soil : soils) {
    records << soil.id;
    std::visit([&](const auto& parameters) { add_parameters(parameters, records); },
               soil.parameters);
    records.end();
  }
  return records.text();
}

std::string text_of_snapshots(const SnapshotRequest& request) {
  Records records;
  (records << request.times.size()).end();
  for (const double time : request.times) (records << time).end();
  return records.text();
}

std::string text_of_gauges(const GaugeRequest& request) {
  Records records;
  (records << request.points.size() << request.result << request.interval).end();
  for (const physics::PlanPoint& point : request.points) {
    (records << point.x << point.y << 0).end();
  }
  return records.text();
}

std::string text_of_sections(const SectionRequest& request) {
  Records records;
  (records << request.sections.size() << request.interval << request.result).end();
  for (const std::vector<Number>& section : request.sections) {
    records << section.size();
    for (const Number edge : section) records << edge;
    records.end();
  }
  return records.text();
}

void write_fields(const Case& contents, const FileSink& sink) {
  const CellFields& fields = contents.fields;
  for (const CellFile& file : cell_files) {
    if (!file.is_in(fields)) continue;
    sink(file.name, text_of_cell_file(file, fields, contents.mesh.n_cells()));
  }
  if (!fields.rain.empty()) {
    sink(rain_file_name, text_of_rain(contents.rain));
    sink(hyetocells_file_name, text_of_terms(fields.rain, contents.rain));
  }
  if (!fields.soil.empty()) {
    sink(soils_file_name, text_of_soils(contents.soils));
    sink(soilcells_file_name, text_of_terms(fields.soil, contents.soils));
  }
}

}  // namespace

void write_case(const Case& contents, const RunRequest& run, const FileSink& sink) {
  sink(nodes_file_name, text_of_nodes(contents.mesh));
  sink(cells_file_name, text_of_cells(contents.mesh));
  sink(edges_file_name, text_of_edges(contents));
  write_fields(contents, sink);
  for (const Series& series : contents.series) sink(series.file, text_of_series(series));
  if (run.snapshots) sink(snapshots_file_name, text_of_snapshots(*run.snapshots));
  if (run.gauges) sink(gauges_file_name, text_of_gauges(*run.gauges));
  if (run.sections) sink(sections_file_name, text_of_sections(*run.sections));
  sink(data_file_name, data_file_text(contents, run));
}

}  // namespace cases
