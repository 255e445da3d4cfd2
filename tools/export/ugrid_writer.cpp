#include "export/ugrid_writer.hpp"

#include <stdexcept>
#include <system_error>
#include <vector>

#include "export/DeflatedFile.hpp"
#include "export/MaximaTable.hpp"
#include "export/SnapshotReader.hpp"
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

/// A file of the results of a case, for either kind of file.
class UgridWriter {
 public:
  UgridWriter(const CaseResults& results, const UgridOptions& options)
      : results_(results),
        mesh_(ugrid::mesh_of(results.mesh, {0.0, 0.0}, results.node_bed())),
        layout_({.title = results.files.title,
                 .crs = options.crs,
                 .epoch = options.epoch,
                 .n_nodes = mesh_.n_nodes(),
                 .n_faces = mesh_.n_faces(),
                 .width = mesh_.width,
                 .has_sediments = results.files.has_sediment,
                 .has_infiltration = results.files.has_infiltration,
                 .has_maxima_of_flow = results.has_maxima(),
                 .has_largest_depths = results.has_envelope(),
                 .is_double = false}) {}

  const ugrid::Definitions& definitions() const { return layout_.definitions(); }

  /// Puts everything; what `tell` is told then is that of the snapshots.
  void put_into(ugrid::DataFile& file, BelowZero& below_zero) const {
    layout_.put_mesh(file, mesh_, results_.bed);
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
  ugrid::Mesh mesh_;
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
