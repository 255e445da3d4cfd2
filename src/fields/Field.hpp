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
  largest_depth,
  infiltrated_depth,
  bed_level,
  sediment_thickness,
  bed_load_x,
  bed_load_y,
  // Maxima of the flow, where a run keeps them, see physics::FlowMaxima; no number where not.
  peak_depth,
  peak_level,
  peak_speed,
  peak_discharge,  ///< of the unit discharge, which is the product of depth and speed
  time_of_peak,    ///< of the depth
  arrival_time,
  time_under_water
};

/// Which snapshots have a column of a field, or whether the table of maxima has one.
enum class InSnapshots { never, always, with_infiltration, with_sediments, in_maxima_instead };

struct FieldInfo {
  Field field;
  const char* quantity;  ///< for messages; the components of a vector share it
  const char* column;    ///< header in the tables that hold it; empty: in none
  InSnapshots presence;
  const char* unit;
  bool is_depth;     ///< never below zero
  bool is_of_state;  ///< a cell has lost its state where it is no number
};

inline constexpr std::array<FieldInfo, 16> field_table = {{
    {Field::depth, "depth", "h", InSnapshots::always, "m", true, true},
    {Field::discharge_x, "unit discharge", "qx", InSnapshots::always, "m2/s", false, true},
    {Field::discharge_y, "unit discharge", "qy", InSnapshots::always, "m2/s", false, true},
    {Field::largest_depth, "largest depth", "", InSnapshots::never, "m", true, false},
    {Field::infiltrated_depth, "infiltrated depth", "f", InSnapshots::with_infiltration, "m", true,
     false},
    {Field::bed_level, "bed level", "zb", InSnapshots::with_sediments, "m", false, false},
    {Field::sediment_thickness, "sediment thickness", "hs", InSnapshots::with_sediments, "m", true,
     false},
    {Field::bed_load_x, "sediment discharge", "qsx", InSnapshots::with_sediments, "m2/s", false,
     false},
    {Field::bed_load_y, "sediment discharge", "qsy", InSnapshots::with_sediments, "m2/s", false,
     false},
    {Field::peak_depth, "peak depth", "h_max", InSnapshots::in_maxima_instead, "m", true, false},
    {Field::peak_level, "peak level", "level_max", InSnapshots::in_maxima_instead, "m", false,
     false},
    {Field::peak_speed, "peak speed", "v_max", InSnapshots::in_maxima_instead, "m/s", false, false},
    {Field::peak_discharge, "peak unit discharge", "q_max", InSnapshots::in_maxima_instead, "m2/s",
     false, false},
    {Field::time_of_peak, "time of the peak depth", "t_h_max", InSnapshots::in_maxima_instead, "s",
     false, false},
    {Field::arrival_time, "time of arrival", "t_arrival", InSnapshots::in_maxima_instead, "s",
     false, false},
    {Field::time_under_water, "time under water", "t_wet", InSnapshots::in_maxima_instead, "s",
     false, false},
}};

constexpr const FieldInfo& info(Field field) {
  return field_table[static_cast<std::size_t>(field)];
}

/// Whether a field is one of the maxima that a run may keep.
constexpr bool is_of_maxima(const FieldInfo& info) {
  return info.presence == InSnapshots::in_maxima_instead;
}

/// Whether the snapshots of a run have a column of a field.
constexpr bool is_in_snapshots(const FieldInfo& info, bool has_sediments, bool has_infiltration) {
  switch (info.presence) {
    case InSnapshots::never:
    case InSnapshots::in_maxima_instead:
      return false;
    case InSnapshots::always:
      return true;
    case InSnapshots::with_infiltration:  // the model with sediments does not know it
      return has_infiltration && !has_sediments;
    case InSnapshots::with_sediments:
      return has_sediments;
  }
  return false;
}

}  // namespace fields
