#include "fields/TableFields.hpp"

#include "fields/maxima_values.hpp"

namespace fields {

const engine::Column* TableFields::column_of(Field field) const {
  const engine::CellTable& cells = engine_.columns();
  const auto if_kept = [](const engine::Column& column) {
    return column.empty() ? nullptr : &column;
  };
  switch (field) {
    case Field::depth:
      return &cells.h;
    case Field::discharge_x:
      return &cells.qx;
    case Field::discharge_y:
      return &cells.qy;
    case Field::infiltrated_depth:
      return if_kept(cells.infiltrated);
    case Field::bed_level:
      return &cells.bed;
    case Field::sediment_thickness:
      return if_kept(cells.hs);
    case Field::bed_load_x:
      return if_kept(cells.qsx);
    case Field::bed_load_y:
      return if_kept(cells.qsy);
    case Field::largest_depth:
      return &cells.max_h;
    case Field::peak_depth:
    case Field::peak_level:
    case Field::peak_speed:
    case Field::peak_discharge:
    case Field::time_of_peak:
    case Field::arrival_time:
    case Field::time_under_water:
      return nullptr;  // see of_maxima
  }
  return nullptr;
}

double TableFields::of_maxima(Field field, cases::Number cell) const {
  const engine::Tables& tables = engine_.tables();
  if (!tables.maxima) return NAN;
  const auto place = static_cast<std::size_t>(tables.place[cases::at(cell)]);
  return value_of(field, tables.maxima->at_place(place, tables.cells.bed[place], tables.zero_depth),
                  tables.maxima->t);
}

double TableFields::of_case(Field field, cases::Number cell) const {
  const std::vector<double>& infiltrated = case_.fields.infiltrated;
  const bool has_soaked = field == Field::infiltrated_depth && !infiltrated.empty();
  return has_soaked ? infiltrated[cases::at(cell)] : 0.0;
}

void TableFields::read(Field field, std::span<double> values) const {
  const engine::Column* const column = column_of(field);
  if (column != nullptr) return engine_.read(*column, values);
  const bool is_maximum = is_of_maxima(info(field));
  for (std::size_t k = 0; k < values.size(); ++k) {
    const auto cell = static_cast<cases::Number>(k);
    values[k] = is_maximum ? of_maxima(field, cell) : of_case(field, cell);
  }
}

void TableFields::read(Field field, std::span<const cases::Number> cells,
                       std::span<double> values) const {
  const engine::Column* const column = column_of(field);
  if (column != nullptr) return engine_.read(*column, cells, values);
  const bool is_maximum = is_of_maxima(info(field));
  for (std::size_t i = 0; i < cells.size(); ++i) {
    values[i] = is_maximum ? of_maxima(field, cells[i]) : of_case(field, cells[i]);
  }
}

CellState TableFields::state(cases::Number cell) const {
  return engine_.columns().state_at(engine_.place_at_hand(cell));
}

}  // namespace fields
