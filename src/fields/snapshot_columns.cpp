#include "fields/snapshot_columns.hpp"

namespace fields {

SnapshotColumns::SnapshotColumns(bool has_sediments, bool has_infiltration)
    : bed_moves(has_sediments) {
  for (const FieldInfo& info : field_table) {
    if (!is_in_snapshots(info, has_sediments, has_infiltration)) continue;
    const bool is_bed = info.field == Field::bed_level;
    fields.insert(is_bed ? fields.begin() : fields.end(), info.field);
  }
}

std::string SnapshotColumns::header() const {
  std::string text = "x\ty";
  if (!bed_moves) text += "\tzb";
  for (const Field field : fields) text += std::string("\t") + info(field).column;
  return text;
}

}  // namespace fields
