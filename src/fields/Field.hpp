// The fields of a run that can be looked at and written: all that lists or names them draws on this
// table.
#pragma once

#include <array>
#include <cstddef>

namespace fields {

enum class Field {
  depth,
  discharge_x,
  discharge_y,
  infiltrated_depth,
  bed_level,
  sediment_thickness,
  bed_load_x,
  bed_load_y,
  largest_depth
};

struct FieldInfo {
  Field field;
  const char* name;    ///< for messages
  const char* column;  ///< header in the snapshots; empty: not in them
  const char* unit;
  bool is_depth;  ///< never below zero
};

inline constexpr std::array<FieldInfo, 9> field_table = {{
    {Field::depth, "depth", "h", "m", true},
    {Field::discharge_x, "unit discharge along x", "qx", "m2/s", false},
    {Field::discharge_y, "unit discharge along y", "qy", "m2/s", false},
    {Field::infiltrated_depth, "infiltrated depth", "f", "m", true},
    {Field::bed_level, "bed level", "zb", "m", false},
    {Field::sediment_thickness, "sediment thickness", "hs", "m", true},
    {Field::bed_load_x, "sediment discharge along x", "qsx", "m2/s", false},
    {Field::bed_load_y, "sediment discharge along y", "qsy", "m2/s", false},
    {Field::largest_depth, "largest depth", "", "m", true},
}};

constexpr const FieldInfo& info(Field field) {
  return field_table[static_cast<std::size_t>(field)];
}

}  // namespace fields
