// The quantities that a case's results give, for data sets and for maps.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"
#include "export/MaximaTable.hpp"
#include "export/SnapshotReader.hpp"
#include "fields/quantities.hpp"

namespace exports {

using fields::Quantity;

/// Those that go into data sets.
std::vector<Quantity> dataset_quantities(const CaseFiles& files);
/// The values of all cells; nan where a dry cell hides them.
void evaluate(const Quantity& quantity, const CaseResults& results, const fields::Columns& columns,
              std::vector<float>& values);
/// The level (m) of the largest depths over a bed that does not move; nan where dry.
std::vector<float> max_level(const CaseResults& results, const std::vector<double>& max_depth);

/// One value per cell, nan where there is nothing to show.
struct MapField {
  std::string name, long_name, unit;
  std::optional<double> time;  ///< s; none for what is of the whole run
  std::vector<float> values;
  BelowZero below_zero;  ///< depths where it was read
};

/// Of the file of a field, without its ending: "depth_600s" for the depth at 600 s.
std::string file_stem(const MapField& field);

/// Names that `read_map_field` knows.
std::vector<std::string> map_field_names();
/// Names of those that this case's snapshots have.
std::vector<std::string> snapshot_map_fields(const CaseFiles& files);
/// A field of the envelope, of the maxima, or of the snapshot at a time (the last one without a
/// time). Where the water is not deeper than `dry_depth` (m), it shows nothing. Refuses what the
/// case does not have.
MapField read_map_field(const CaseResults& results, const std::string& name,
                        std::optional<double> time, double dry_depth);
/// The bed of the cells at the start of a run.
MapField bed_at_start(const CaseResults& results);
/// The same as read_map_field() of a snapshot that has been read.
MapField map_field(const CaseResults& results, const Snapshot& snapshot, const std::string& name,
                   double dry_depth);

/// The velocity (m/s) in the cells of a snapshot; nan where the water is not deeper than
/// `dry_depth`.
std::vector<std::array<float, 2>> velocities(const CaseResults& results, const Snapshot& snapshot,
                                             double dry_depth);

/// The same of maxima that have been read.
MapField map_field(const MaximaTable& maxima, const MaximaQuantity& quantity, double dry_depth);

}  // namespace exports
