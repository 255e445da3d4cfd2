#include "fields/quantities.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>

#include "fields/maxima_columns.hpp"

namespace fields {

namespace {

using Part = Quantity::Part;
using WhenDry = Quantity::WhenDry;
using For = Quantity::For;
using Of = const CellValues&;
using Cell = std::size_t;

template <Field field>
double value(Of cells, Cell i) {
  return cells.columns[field][i];
}

/// What lies below zero is dry.
template <Field field>
double depth_of(Of cells, Cell i) {
  const double depth = cells.columns[field][i];
  return depth < 0.0 ? 0.0 : depth;
}

double bed(Of cells, Cell i) {
  const std::vector<double>& moved = cells.columns[Field::bed_level];
  return moved.empty() ? cells.bed[i] : moved[i];
}

double level(Of cells, Cell i) { return bed(cells, i) + value<Field::depth>(cells, i); }
double velocity_x(Of cells, Cell i) {
  return value<Field::discharge_x>(cells, i) / value<Field::depth>(cells, i);
}
double velocity_y(Of cells, Cell i) {
  return value<Field::discharge_y>(cells, i) / value<Field::depth>(cells, i);
}
double speed(Of cells, Cell i) {
  return std::hypot(value<Field::discharge_x>(cells, i), value<Field::discharge_y>(cells, i)) /
         value<Field::depth>(cells, i);
}
double bed_change(Of cells, Cell i) { return value<Field::bed_level>(cells, i) - cells.bed[i]; }
double largest_level(Of cells, Cell i) {
  return cells.bed[i] + value<Field::largest_depth>(cells, i);
}

/// The value of every cell by a formula, which stands in the loop.
template <double (*of_cell)(Of, Cell)>
void each(Of cells, Cell first, std::span<double> values) {
  for (std::size_t k = 0; k < values.size(); ++k) values[k] = of_cell(cells, first + k);
}

/// A field as it is.
Quantity plain(Field field, const char* name, const char* long_name, Part part = Part::scalar) {
  const std::string unit = info(field).unit;
  const For use = part == Part::scalar ? For::both : For::datasets;
  return {field, Field::depth,  use, name, long_name, unit == "m2/s" ? "m2 s-1" : unit,
          part,  WhenDry::shown};
}

/// What is made of the water of wet cells.
Quantity of_water(For use, const char* name, const char* long_name, const char* unit, Part part,
                  decltype(Quantity::of_cells) of_cells) {
  return {Field::depth, Field::depth, use, name, long_name, unit, part, WhenDry::hidden, of_cells};
}

}  // namespace

const std::vector<Quantity>& quantities_in_time() {
  static const std::vector<Quantity> table = {
      {Field::depth, Field::depth, For::both, "depth", "depth", "m", Part::scalar,
       WhenDry::left_off_maps, each<depth_of<Field::depth>>},
      of_water(For::both, "level", "water level", "m", Part::scalar, each<level>),
      of_water(For::datasets, "velocity", "velocity", "m s-1", Part::x, each<velocity_x>),
      of_water(For::datasets, "velocity", "velocity", "m s-1", Part::y, each<velocity_y>),
      of_water(For::maps, "velocity", "velocity", "m s-1", Part::scalar, each<speed>),
      plain(Field::discharge_x, "unit_discharge", "unit discharge", Part::x),
      plain(Field::discharge_y, "unit_discharge", "unit discharge", Part::y),
      plain(Field::infiltrated_depth, "infiltrated_depth", "infiltrated depth"),
      plain(Field::bed_level, "bed", "bed elevation"),
      {Field::bed_level, Field::depth, For::both, "bed_change", "bed change", "m", Part::scalar,
       WhenDry::shown, each<bed_change>},
      plain(Field::sediment_thickness, "sediment_thickness", "sediment thickness"),
      plain(Field::bed_load_x, "bed_load", "bed load", Part::x),
      plain(Field::bed_load_y, "bed_load", "bed load", Part::y),
  };
  return table;
}

std::vector<Quantity> dataset_quantities(bool has_sediments, bool has_infiltration) {
  std::vector<Quantity> shown;
  std::copy_if(quantities_in_time().begin(), quantities_in_time().end(), std::back_inserter(shown),
               [&](const Quantity& quantity) {
                 return quantity.use != For::maps &&
                        is_in_snapshots(info(quantity.source), has_sediments, has_infiltration);
               });
  return shown;
}

std::vector<Quantity> dataset_maxima_of_flow() {
  std::vector<Quantity> shown;
  for (const MaximaQuantity& of : maxima_quantities) {
    shown.push_back({maxima_columns[of.column].field, Field::peak_depth, For::datasets, of.name,
                     of.long_name, of.unit, Part::scalar, WhenDry::shown});
  }
  return shown;
}

std::vector<Quantity> dataset_largest_depths(bool has_sediments) {
  constexpr Field depth = Field::largest_depth;
  std::vector<Quantity> shown = {{depth, depth, For::datasets, "max_depth", "largest depth", "m",
                                  Part::scalar, WhenDry::left_off_maps, each<depth_of<depth>>}};
  if (!has_sediments) {  // whose bed at that time is not known
    shown.push_back({depth, depth, For::datasets, "max_level", "largest water level", "m",
                     Part::scalar, WhenDry::hidden, each<largest_level>});
  }
  return shown;
}

std::string variable_name(const Quantity& quantity) {
  switch (quantity.part) {
    case Part::x:
      return quantity.name + "_x";
    case Part::y:
      return quantity.name + "_y";
    case Part::scalar:
      break;
  }
  return quantity.name;
}

namespace {

/// Values of cells, or nan where the depth does not exceed that of a dry cell.
template <class Real>
void hide_dry(std::span<const double> of_cells, const double* depth, double dry_depth,
              Real* values) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  for (std::size_t k = 0; k < of_cells.size(); ++k) {
    values[k] = static_cast<Real>(depth[k] > dry_depth ? of_cells[k] : nan);
  }
}

}  // namespace

template <class Real>
void evaluate(const Quantity& quantity, const CellValues& cells, std::vector<Real>& values) {
  constexpr std::size_t block_size = 1024;  // cells that stay in the first cache
  const std::vector<double>& depth = cells.columns[quantity.depth];
  const std::vector<double>& source = cells.columns[quantity.source];
  values.resize(source.size());
  std::array<double, block_size> computed;
  for (std::size_t first = 0; first < values.size(); first += block_size) {
    const std::size_t count = std::min(block_size, values.size() - first);
    std::span<const double> of_cells(source.data() + first, count);
    if (quantity.of_cells != nullptr) {
      quantity.of_cells(cells, first, std::span(computed.data(), count));
      of_cells = std::span(computed.data(), count);
    }
    Real* const to = values.data() + first;
    if (quantity.when_dry == WhenDry::hidden) {
      hide_dry(of_cells, depth.data() + first, cells.dry_depth, to);
    } else {
      std::transform(of_cells.begin(), of_cells.end(), to,
                     [](double value) { return static_cast<Real>(value); });
    }
  }
}

template void evaluate(const Quantity&, const CellValues&, std::vector<float>&);
template void evaluate(const Quantity&, const CellValues&, std::vector<double>&);

}  // namespace fields
