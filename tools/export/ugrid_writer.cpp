#include "export/ugrid_writer.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "export/DeflatedFile.hpp"
#include "export/MaximaTable.hpp"
#include "export/SnapshotReader.hpp"
#include "export/csv_writer.hpp"
#include "support/CaseNames.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"
#include "ugrid/ClassicFile.hpp"

namespace exports {

namespace {

/// What is of the whole run, as far as it is there.
fields::Columns whole_run(const CaseResults& results) {
  fields::Columns columns;
  if (const auto depth = results.max_depth()) columns[fields::Field::largest_depth] = *depth;
  if (!results.has_maxima()) return columns;
  const MaximaTable maxima = read_maxima(results);
  for (const MaximaQuantity& quantity : maxima_quantities) {
    const std::vector<float>& values = maxima[quantity];
    columns[fields::maxima_columns[quantity.column].field].assign(values.begin(), values.end());
  }
  return columns;
}

/// Names of the case and, for each thing that has none, one by its number; empty where nothing has
/// one.
std::vector<std::string> all_named(std::vector<std::string> names, std::size_t count,
                                   const std::string& kind) {
  const auto is_named = [](const std::string& name) { return !name.empty(); };
  names = tools::names_of_each(std::move(names), count);
  if (std::none_of(names.begin(), names.end(), is_named)) return {};
  for (std::size_t i = 0; i < count; ++i) {
    if (names[i].empty()) names[i] = kind + " " + std::to_string(i + 1);
  }
  return names;
}

ugrid::Stations stations_of(const CaseFiles& files) {
  const tools::CaseNames names = tools::read_case_names(files.folder);
  ugrid::Stations stations;
  const auto is_there = [](const std::optional<std::string>& list) {
    std::error_code ignored;
    return list && std::filesystem::exists(*list, ignored);
  };
  if (is_there(files.gauges) && !names.gauges.empty()) {
    const cases::GaugeRequest list = read_gauge_list(files);
    stations.gauges = all_named(names.gauges, list.points.size(), "gauge");
    for (const physics::PlanPoint& point : list.points) {
      stations.x.push_back(point.x);
      stations.y.push_back(point.y);
    }
  }
  if (is_there(files.sections) && !names.sections.empty()) {
    const cases::SectionRequest list = read_section_list(files);
    stations.sections = all_named(names.sections, list.sections.size(), "section");
  }
  return stations;
}

/// A file of the results of a case, for either kind of file.
class UgridWriter {
 public:
  UgridWriter(const CaseResults& results, const UgridOptions& options)
      : results_(results),
        stations_(stations_of(results.files)),
        mesh_(cases::all_rows_of(results.mesh, {0.0, 0.0}, results.node_bed(), results.bed)),
        layout_({.title = results.files.title,
                 .crs = options.crs,
                 .epoch = options.epoch,
                 .n_nodes = mesh_.n_nodes(),
                 .n_faces = mesh_.n_cells(),
                 .width = mesh_.width,
                 .has_sediments = results.files.has_sediment,
                 .has_infiltration = results.files.has_infiltration,
                 .has_maxima_of_flow = results.has_maxima(),
                 .has_largest_depths = results.has_envelope(),
                 .is_double = false,
                 .stations = stations_}) {}

  const ugrid::Definitions& definitions() const { return layout_.definitions(); }

  /// Puts everything; what `tell` is told then is that of the snapshots.
  void put_into(ugrid::DataFile& file, BelowZero& below_zero) const {
    layout_.put_topology(file);
    layout_.put_mesh(file, mesh_);
    layout_.put_stations(file, stations_);
    const fields::Columns of_run = whole_run(results_);
    layout_.put_maxima(file, values_of(of_run));
    Snapshot snapshot;
    for (std::size_t record = 0; record < results_.snapshots.size(); ++record) {
      read_snapshot(results_, results_.snapshots[record], snapshot);
      layout_.put_snapshot(file, record, snapshot.time, values_of(snapshot.columns));
    }
    below_zero = snapshot.below_zero;
  }

 private:
  fields::CellValues values_of(const fields::Columns& columns) const {
    return {columns, results_.bed, results_.files.dry_depth};
  }

  const CaseResults& results_;
  ugrid::Stations stations_;
  cases::MeshRows mesh_;
  ugrid::UgridLayout layout_;
};

ugrid::ClassicLayout classic_layout(const std::string& name,
                                    const ugrid::Definitions& definitions) {
  try {
    return ugrid::classic_layout(definitions);
  } catch (const std::length_error& error) {
    throw tools::Error("The file " + name + " couldn't be written: " + error.what() +
                       "; --compress knows no such bound.");
  }
}

void check(const std::string& name, int error) {
  if (error == 0) return;
  throw tools::Error("The file " + name +
                     " couldn't be written: " + std::generic_category().message(error) + ".");
}

}  // namespace

void write_ugrid(const CaseResults& results, const UgridOptions& options) {
  const UgridWriter writer(results, options);
  BelowZero below_zero;
  tools::PartialFile file(options.output);
  if (options.is_compressed) {
    DeflatedFile deflated(file.part(), options.output, writer.definitions());
    writer.put_into(deflated, below_zero);
    deflated.close();
  } else {
    utils::WritableFile bytes;
    check(options.output, bytes.open_as_it_is(file.part()));
    ugrid::ClassicFile classic(bytes, classic_layout(options.output, writer.definitions()));
    classic.begin();
    writer.put_into(classic, below_zero);
    classic.show(results.snapshots.size());
    check(options.output, classic.error());
    check(options.output, bytes.close());
  }
  file.commit();
  below_zero.tell();
}

}  // namespace exports
