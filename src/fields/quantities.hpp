// The quantities that results show, made of fields, with names and units: one list for every
// format.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "fields/Columns.hpp"
#include "fields/Field.hpp"

namespace fields {

/// What quantities are computed from. All that is referred to must outlive it.
struct CellValues {
  const Columns& columns;
  const std::vector<double>& bed;  ///< of the cells at the start, m
  double dry_depth;                ///< depth up to which a cell is dry, m
};

/// Vectors have two, the x and after it the y component.
struct Quantity {
  enum class Part { scalar, x, y };
  /// What a dry cell shows: its value; its value in data sets, but nothing on maps; or nothing.
  enum class WhenDry { shown, left_off_maps, hidden };
  enum class For { datasets, maps, both };

  Field source;           ///< without it there is no such quantity
  Field depth;            ///< tells whether a cell is dry
  For use;                ///< where it is shown
  std::string name;       ///< "velocity" for both components of the velocity
  std::string long_name;  ///< as a legend says it
  std::string unit;
  Part part;
  WhenDry when_dry;
  /// The values of as many cells as there is room for, from a first one on; null: the field itself.
  void (*of_cells)(const CellValues&, std::size_t first, std::span<double> values) = nullptr;
};

/// Those of a time, in the order in which they are shown.
const std::vector<Quantity>& quantities_in_time();
/// Those of a time that data sets of a run show.
std::vector<Quantity> dataset_quantities(bool has_sediments, bool has_infiltration);

/// Those of a whole run that its data sets show: of the maxima of the flow, where they are kept,
/// and of the largest depths.
std::vector<Quantity> dataset_maxima_of_flow();
std::vector<Quantity> dataset_largest_depths(bool has_sediments);

/// velocity_x for the x component of the velocity.
std::string variable_name(const Quantity& quantity);

/// The values of all cells, as float or double; nan where a dry cell hides them.
template <class Real>
void evaluate(const Quantity& quantity, const CellValues& cells, std::vector<Real>& values);

}  // namespace fields
