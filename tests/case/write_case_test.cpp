#include "case/write_case.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "case/CollectedMessages.hpp"
#include "case/boundary_kinds.hpp"
#include "case/cell_files.hpp"
#include "case/read_case.hpp"
#include "case/read_requests.hpp"
#include "support/TemporaryFolder.hpp"
#include "utils/TextScanner.hpp"

namespace {

using cases::at;
using cases::Case;

/// Numbers that lose their last bits where they are written with too few digits.
constexpr double third = 1.0 / 3.0, sum = 0.1 + 0.2, far = 4876543.2109876543, tiny = 1.7e-300;

/// A square and two triangles beside it, with every kind of boundary of a model.
Case case_of(bool has_sediments) {
  Case contents;
  contents.has_sediments = has_sediments;
  contents.t_start = third;
  contents.t_end = 1e4 * third;
  contents.cfl = 0.3 * third;
  contents.zero_depth = 0.001 * third;
  cases::Mesh& mesh = contents.mesh;
  mesh.x = {far, far + 1.0, far + 2.0, far, far + 1.0, far + 2.0};
  mesh.y = {0.0, third, 0.0, 1.0, 1.0 + third, sum};
  mesh.z = {third, -0.0, -far, sum, tiny, 1e21};
  mesh.add_cell(std::vector<int>{0, 1, 4, 3});
  mesh.add_cell(std::vector<int>{1, 2, 4});
  mesh.add_cell(std::vector<int>{2, 5, 4});
  mesh.left = {0, 0, 0, 0, 1, 1, 2, 2};
  mesh.right = {-1, 1, -1, -1, -1, 2, -1, -1};
  mesh.node1 = {0, 1, 4, 3, 1, 2, 2, 5};
  mesh.node2 = {1, 4, 3, 0, 2, 4, 5, 4};
  const cases::Number on_boundary[] = {0, 2, 3, 4, 6, 7};
  std::size_t next = 0;
  for (const cases::BoundaryKind& kind : cases::boundary_kinds) {
    if (has_sediments && !kind.with_sediments) continue;
    const int series = kind.has_series() ? static_cast<int>(contents.series.size()) : -1;
    if (series >= 0) {
      contents.series.push_back(
          {"series_" + std::to_string(series) + ".txt", {-third, 0.0, sum}, {third, tiny, -far}});
    }
    mesh.boundaries.push_back(
        {on_boundary[next++], kind.code, kind.has_value() ? -third : 0.0, series});
  }
  for (; next < std::size(on_boundary); ++next) {
    mesh.boundaries.push_back({on_boundary[next], edge_code::wall, 0.0, -1});
  }
  contents.fields.bed = {third, -far, sum};
  contents.fields.manning = {0.1 * third, 0.02, 0.03};
  contents.fields.level = {far, 1e21 * third, -0.0};
  contents.fields.qx = {sum, 0.0, -third};
  contents.fields.qy = {tiny, -sum, 0.1};
  return contents;
}

Case with_rain_and_soils(Case contents) {
  contents.rain = {{7, 60, {-third, sum}, {1e-5 * third, 0.0}}, {-3, 0, {0.0}, {2e-6}}};
  contents.soils = {{4, cases::GreenAmptParameters{1e-6, 0.1, third, 0.4, 1.0, 0.1 * sum}},
                    {1, cases::HortonParameters{2e-5, 1e-5 * third, 3.0, sum, 0.0}}};
  contents.fields.rain = {1, -1, 0};
  contents.fields.soil = {-1, 1, 0};
  contents.fields.infiltrated = {third, 0.0, 0.001};
  contents.has_infiltration = true;
  return contents;
}

Case with_sediments(Case contents) {
  contents.fields.sediment = {sum, 0.0, third};
  contents.sediment = {0.001 * third, 2.65, 0.1 * third, 0.4};
  return contents;
}

/// Equal bits: -0 is not 0.
void expect_same(const std::vector<double>& found, const std::vector<double>& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found[i]), std::bit_cast<std::uint64_t>(expected[i]))
        << found[i] << " is not " << expected[i];
  }
}

void expect_same(const cases::Mesh& found, const cases::Mesh& expected) {
  expect_same(found.x, expected.x);
  expect_same(found.y, expected.y);
  expect_same(found.z, expected.z);
  EXPECT_EQ(found.cell_nodes, expected.cell_nodes);
  EXPECT_EQ(found.first_node, expected.first_node);
  EXPECT_EQ(found.left, expected.left);
  EXPECT_EQ(found.right, expected.right);
  EXPECT_EQ(found.node1, expected.node1);
  EXPECT_EQ(found.node2, expected.node2);
  ASSERT_EQ(found.boundaries.size(), expected.boundaries.size());
  for (std::size_t i = 0; i < found.boundaries.size(); ++i) {
    EXPECT_EQ(found.boundaries[i].edge, expected.boundaries[i].edge);
    EXPECT_EQ(found.boundaries[i].code, expected.boundaries[i].code);
    expect_same({found.boundaries[i].value}, {expected.boundaries[i].value});
    EXPECT_EQ(found.boundaries[i].series, expected.boundaries[i].series);
  }
}

void expect_same(const cases::CellFields& found, const cases::CellFields& expected) {
  for (const cases::CellFile& file : cases::cell_files) {
    SCOPED_TRACE(file.name);
    for (const cases::CellColumn& column : file.columns()) {
      expect_same(found.*column.values, expected.*column.values);
    }
  }
  EXPECT_EQ(found.rain, expected.rain);
  EXPECT_EQ(found.soil, expected.soil);
}

std::vector<double> numbers_of(const cases::Soil& soil) {
  if (const auto* const s = std::get_if<cases::GreenAmptParameters>(&soil.parameters)) {
    return {s->Ks, s->psi, s->theta_i, s->theta_s, s->L, s->kr};
  }
  const auto& s = std::get<cases::HortonParameters>(soil.parameters);
  return {s.f0, s.fc, s.k, s.Fmax, s.kr};
}

void expect_same_sources(const Case& found, const Case& expected) {
  ASSERT_EQ(found.series.size(), expected.series.size());
  for (std::size_t i = 0; i < found.series.size(); ++i) {
    EXPECT_EQ(found.series[i].file, expected.series[i].file);
    expect_same(found.series[i].times, expected.series[i].times);
    expect_same(found.series[i].values, expected.series[i].values);
  }
  ASSERT_EQ(found.rain.size(), expected.rain.size());
  for (std::size_t i = 0; i < found.rain.size(); ++i) {
    EXPECT_EQ(found.rain[i].id, expected.rain[i].id);
    EXPECT_EQ(found.rain[i].step, expected.rain[i].step);
    expect_same(found.rain[i].times, expected.rain[i].times);
    expect_same(found.rain[i].intensities, expected.rain[i].intensities);
  }
  ASSERT_EQ(found.soils.size(), expected.soils.size());
  for (std::size_t i = 0; i < found.soils.size(); ++i) {
    EXPECT_EQ(found.soils[i].id, expected.soils[i].id);
    EXPECT_EQ(found.soils[i].parameters.index(), expected.soils[i].parameters.index());
    expect_same(numbers_of(found.soils[i]), numbers_of(expected.soils[i]));
  }
}

class WriteCase : public testing::Test {
 protected:
  WriteCase() { std::filesystem::current_path(folder.path()); }
  ~WriteCase() override { std::filesystem::current_path(here); }

  void write(const Case& contents) {
    cases::write_case(contents, run, [this](const std::string& name, const std::string& text) {
      folder.write(name, text);
      last = name;
    });
  }
  cases::ReadCase read() {
    std::ostringstream log, out;
    utils::Console console(out);
    return cases::read_case("data.json", {log, console}, messages);
  }
  void expect_reads_back(const Case& contents) {
    write(contents);
    const cases::ReadCase read_back = read();
    const Case& found = read_back.contents;
    EXPECT_EQ(messages.errors, std::vector<std::string>());
    EXPECT_EQ(found.has_sediments, contents.has_sediments);
    EXPECT_EQ(found.has_infiltration, contents.has_infiltration);
    expect_same({found.t_start, found.t_end, found.cfl, found.zero_depth},
                {contents.t_start, contents.t_end, contents.cfl, contents.zero_depth});
    expect_same({found.sediment.d50, found.sediment.density, found.sediment.manning,
                 found.sediment.porosity},
                {contents.sediment.d50, contents.sediment.density, contents.sediment.manning,
                 contents.sediment.porosity});
    expect_same(found.mesh, contents.mesh);
    expect_same(found.fields, contents.fields);
    expect_same_sources(found, contents);
  }

  const std::filesystem::path here = std::filesystem::current_path();
  support::TemporaryFolder folder;
  cases::RunRequest run{"a \"case\"", "out/", third, {}, {}, {}, {}, {}, {}};
  CollectedMessages messages;
  std::string last;
};

TEST_F(WriteCase, EveryNumberOfACaseOfWaterReadsBackToItsBits) {
  expect_reads_back(with_rain_and_soils(case_of(false)));
}

TEST_F(WriteCase, EveryNumberOfACaseWithSedimentsReadsBackToItsBits) {
  expect_reads_back(with_sediments(case_of(true)));
}

TEST_F(WriteCase, WhatIsEmptyIsLeftOut) {
  Case contents = case_of(false);
  contents.fields.bed.clear();
  contents.fields.manning.clear();
  contents.zero_depth = cases::default_number(cases::key("model/zero depth value"));
  expect_reads_back(contents);
  for (const char* name : {"bed.txt", "friction.txt", "rain.txt", "soils.txt", "gauges.txt"}) {
    EXPECT_FALSE(folder.has(name)) << name;
  }
  EXPECT_EQ(folder.read("data.json").find("zero depth value"), std::string::npos);
}

TEST_F(WriteCase, RequestsReadBackToTheirBits) {
  run.origin = {far, -third};
  run.epsg = 32632;
  run.epoch = "2026-05-01T06:00:00Z";
  run.final_state = "end of \"it\".txt";
  run.maxima = {"largest.txt", third};
  run.snapshots = {{0.0, third, far}};
  run.gauges = {"points.txt", sum, {{far, third}, {-0.0, tiny}}};
  run.sections = {"lines.txt", 60.0 * third, {{1, 5}, {}}};
  write(case_of(false));
  const cases::ReadCase found = read();
  EXPECT_EQ(found.data.simulation_name, run.name);
  EXPECT_EQ(found.data.output_folder, run.output_folder);
  EXPECT_EQ(found.data.dt_enveloppe, run.envelope_interval);
  EXPECT_EQ(found.data.epsg, 32632);
  EXPECT_EQ(found.data.epoch, "2026-05-01 06:00:00");
  EXPECT_EQ(found.data.final_state, run.final_state);
  EXPECT_EQ(found.data.maxima->result, "largest.txt");
  expect_same({found.data.maxima->arrival_depth}, {third});
  const auto origin = utils::DataFileReader("data.json").get_mesh_origin();
  expect_same({origin[0], origin[1]}, {far, -third});

  utils::TextScanner snapshots(*found.data.pictures), gauges(*found.data.gauges),
      sections(*found.data.discharges);
  expect_same(cases::read_snapshots(snapshots).times, run.snapshots->times);
  const cases::GaugeRequest points = cases::read_gauges(gauges);
  EXPECT_EQ(points.result, "points.txt");
  expect_same({points.interval, points.points.at(0).x, points.points.at(0).y, points.points.at(1).x,
               points.points.at(1).y},
              {sum, far, third, -0.0, tiny});
  const cases::SectionRequest lines = cases::read_sections(sections, 8);
  EXPECT_EQ(lines.result, "lines.txt");
  expect_same({lines.interval}, {60.0 * third});
  EXPECT_EQ(lines.sections, run.sections->sections);
}

TEST_F(WriteCase, TheDataFileComesLast) {
  write(case_of(false));
  EXPECT_EQ(last, "data.json");
}

}  // namespace
