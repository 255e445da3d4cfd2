#include "export/CaseResults.hpp"

#include <array>
#include <cmath>
#include <filesystem>
#include <string>

#include "case/node_bed.hpp"
#include "case/read_fields.hpp"
#include "export/TableReader.hpp"
#include "support/Error.hpp"
#include "utils/TextScanner.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/snapshot_name.hpp"
#include "utils/stop.hpp"

namespace exports {

namespace {

using cases::key;

std::vector<double> initial_bed(const CaseFiles& files, const Mesh& mesh) {
  cases::CellFields fields;
  const auto read = [&](const std::optional<std::string>& name, const cases::Key& key) {
    if (!name) return;
    utils::TextScanner file(*name);
    cases::read_cell_file(*cases::cell_file(key), file, static_cast<cases::Number>(mesh.n_cells()),
                          fields);
  };
  read(files.fixed_bed, key("model/conditions/fixed bed level"));
  read(files.sediment_thickness, key("model/conditions/initial sediments level"));
  std::vector<double> bed = files.fixed_bed ? fields.bed : mesh.center_z;
  for (std::size_t i = 0; i < fields.sediment.size(); ++i) bed[i] += fields.sediment[i];
  return bed;
}

}  // namespace

CaseResults::CaseResults(const std::string& folder_or_data_file)
    : files(folder_or_data_file),
      log(files),
      mesh(read_mesh(files.nodes, files.cells, files.origin)),
      bed(initial_bed(files, mesh)) {
  if (files.snapshot_times) find_snapshots();
  if (log.is_earlier(envelope_file())) earlier_results.push_back(envelope_file());
  if (earlier_results.empty()) return;
  utils::warn(utils::counted(earlier_results.size(), "result") +
              " of an earlier run left out, the first of them " + earlier_results.front() +
              ": the run of " + log.name() + " has not come so far; let it go on to its end.");
}

void CaseResults::find_snapshots() {
  utils::TextScanner schedule(*files.snapshot_times);
  const int count = schedule.read_count("number of snapshots", 1);
  double before = -HUGE_VAL;
  for (int i = 0; i < count; ++i) {
    schedule.begin_record("snapshot", i, count);
    const double time = schedule.read_number("time");
    if (time <= before) schedule.refuse("time", "a time after the one before");
    before = time;
    const std::string name = files.result(utils::snapshot_name(time));
    // Where two times have the same file name, the file holds the later one.
    if (!snapshots.empty() && snapshots.back().name == name) snapshots.pop_back();
    if (log.is_earlier(name, time) && std::filesystem::is_regular_file(name)) {
      earlier_results.push_back(name);
    } else if (std::filesystem::is_regular_file(name)) {
      snapshots.push_back({time, name});
    } else {
      missing_snapshots.push_back(name);
    }
  }
}

std::vector<double> CaseResults::node_bed() const {
  if (!files.fixed_bed && !files.sediment_thickness) return mesh.z;
  return cases::bed_at_nodes(mesh, bed);
}

bool CaseResults::has_envelope() const {
  return std::filesystem::exists(envelope_file()) && !log.is_earlier(envelope_file());
}

std::optional<std::vector<double>> CaseResults::max_depth(BelowZero* below_zero) const {
  if (!has_envelope()) return std::nullopt;
  TableReader table(envelope_file());
  std::array<double, 4> row;
  std::vector<double> depth;
  depth.reserve(mesh.n_cells());
  while (table.next_row(row)) {
    if (depth.size() == mesh.n_cells()) {
      table.refuse(": found a row more than the " + std::to_string(depth.size()) +
                   " cells of the mesh. Is it a result of this case?");
    }
    depth.push_back(row[3]);
  }
  if (depth.size() < mesh.n_cells()) {
    table.refuse(": found the end of the file, expected " + std::to_string(mesh.n_cells()) +
                 " rows, one per cell.");
  }
  const BelowZero found = dry_below_zero(mesh, std::nullopt, depth);
  if (below_zero != nullptr) below_zero->add(found);
  return depth;
}

bool CaseResults::has_maxima() const {
  return files.maxima && std::filesystem::exists(*files.maxima) && !log.is_earlier(*files.maxima);
}

const SnapshotFile& CaseResults::snapshot_at(std::optional<double> time) const {
  if (snapshots.empty()) {
    if (!earlier_results.empty()) throw tools::Error("No snapshot of the last run is there.");
    throw tools::Error(missing_snapshots.empty()
                           ? files.data_file + " asks for no snapshots of flow."
                           : "No snapshot is there: expected " + missing_snapshots.front() +
                                 ". Has the case been run?");
  }
  if (!time) return snapshots.back();
  constexpr double tolerance = 0.005;  // s; the names of the files have two decimals
  std::string times;
  for (const SnapshotFile& snapshot : snapshots) {
    if (std::abs(snapshot.time - *time) <= tolerance) return snapshot;
    times += (times.empty() ? "" : ", ") + utils::number_text(snapshot.time);
  }
  throw tools::Error("No snapshot is there for the time " + utils::number_text(*time) +
                     " s; those there are for " + times + " s.");
}

}  // namespace exports
