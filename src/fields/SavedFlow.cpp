#include "fields/SavedFlow.hpp"

#include <algorithm>
#include <functional>
#include <iterator>

namespace fields {

namespace {

constexpr std::size_t columns_of_state = std::size(engine::columns_of_flow);
constexpr std::size_t columns_of_notes = 3;
constexpr std::size_t columns_of_all = columns_of_state + columns_of_notes + 1;
constexpr std::size_t rows_at_once = 1024;

bool has(const SavedFlow& saved, std::size_t column) {
  return std::binary_search(saved.columns.begin(), saved.columns.end(), column);
}

bool is_of_start(std::size_t column) {
  return column < columns_of_state && engine::columns_of_flow[column] == &engine::State::eta;
}

bool is_maximum(std::size_t column) {
  return column < columns_of_state &&
         std::find(std::begin(engine::columns_of_maxima), std::end(engine::columns_of_maxima),
                   engine::columns_of_flow[column]) != std::end(engine::columns_of_maxima);
}

bool are_clocks_of(const std::vector<physics::RainClock>& clocks, const cases::Case& contents) {
  return std::equal(clocks.begin(), clocks.end(), contents.rain.begin(), contents.rain.end(),
                    [](const physics::RainClock& clock, const cases::Hyetogram& rain) {
                      return clock.hyetogram_index >= -1 &&
                             clock.hyetogram_index < static_cast<int>(rain.times.size());
                    });
}

SavedPart part_of(std::size_t column) {
  if (column < columns_of_state) return SavedPart::state;
  return column < columns_of_state + columns_of_notes ? SavedPart::notes : SavedPart::infiltrated;
}

std::vector<std::vector<double>*> columns_of(SavedCells& cells) {
  std::vector<std::vector<double>*> all;
  for_each_saved_column(cells, [&](std::vector<double>& column) { all.push_back(&column); });
  return all;
}

/// Whether a row can have these columns.
bool are_columns(const std::vector<std::uint8_t>& columns) {
  const bool ascend =
      std::adjacent_find(columns.begin(), columns.end(), std::greater_equal<>()) == columns.end();
  return ascend && (columns.empty() || columns.back() < columns_of_all);
}

}  // namespace

void SavedFlow::describe(const SavedCells& saved, std::uint64_t cells_of_all) {
  cells = cells_of_all;
  columns.clear();
  std::uint8_t number = 0;
  for_each_saved_column(saved, [&](const std::vector<double>& column) {
    if (!column.empty()) columns.push_back(number);
    ++number;
  });
  rain_clocks = saved.state.rain_clocks;
  has_told_not_hyperbolic = saved.state.has_told_not_hyperbolic;
  of_last_step = saved.notes.of_last_step;
}

bool fits(const SavedFlow& saved, const SavedFlow& present, const cases::Case& contents) {
  if (saved.cells != present.cells || !are_columns(saved.columns)) return false;
  if (!are_clocks_of(saved.rain_clocks, contents)) return false;
  for (std::size_t column = 0; column < columns_of_state; ++column) {
    // The free surface of the start is there before the first step alone; maxima may be kept no
    // more.
    const bool may_be_missing = is_of_start(column);
    const bool may_be_more = is_of_start(column) || is_maximum(column);
    const bool is_there = has(saved, column), is_needed = has(present, column);
    if (is_needed && !is_there && !may_be_missing) return false;
    if (is_there && !is_needed && !may_be_more) return false;
  }
  return true;
}

bool fits(SavedPart part, const SavedFlow& saved, const SavedFlow& present) {
  bool fits = true;
  for (std::size_t column = columns_of_state; column < columns_of_all; ++column) {
    if (part_of(column) == part) fits = fits && has(saved, column) == has(present, column);
  }
  if (part != SavedPart::notes) return fits;
  const auto is_cell_or_none = [&](std::int64_t cell) {
    return cell >= -1 && cell < static_cast<std::int64_t>(present.cells);
  };
  const physics::StepNotes& last = saved.of_last_step;
  return fits && is_cell_or_none(last.limiting_cell) && is_cell_or_none(last.speed_squared.cell) &&
         is_cell_or_none(last.speed_squared_per_depth.cell);
}

std::vector<std::vector<double>*> columns_in_rows(const SavedFlow& saved,
                                                  const std::vector<SavedPart>& parts,
                                                  SavedCells& cells) {
  const std::vector<std::vector<double>*> all = columns_of(cells);
  std::vector<std::vector<double>*> columns;
  for (const std::size_t number : saved.columns) {
    const bool is_asked_for = std::find(parts.begin(), parts.end(), part_of(number)) != parts.end();
    columns.push_back(is_asked_for ? all[number] : nullptr);
  }
  return columns;
}

void take_the_rest(const SavedFlow& saved, SavedCells& cells) {
  cells.state.rain_clocks = saved.rain_clocks;
  cells.state.has_told_not_hyperbolic = saved.has_told_not_hyperbolic;
  cells.notes.of_last_step = saved.of_last_step;
}

void put_rows(std::span<const double* const> columns, std::size_t rows, utils::ByteSink& to) {
  std::vector<double> values(columns.size() * std::min(rows, rows_at_once));
  for (std::size_t first = 0; first < rows; first += rows_at_once) {
    const std::size_t count = std::min(rows_at_once, rows - first);
    for (std::size_t c = 0; c < columns.size(); ++c) {
      for (std::size_t i = 0; i < count; ++i) {
        values[i * columns.size() + c] = columns[c][first + i];
      }
    }
    to.put(values.data(), count * columns.size() * sizeof(double));
  }
}

void take_rows(std::span<double* const> columns, std::size_t rows, utils::ByteSource& from) {
  std::vector<double> values(columns.size() * std::min(rows, rows_at_once));
  for (std::size_t first = 0; first < rows; first += rows_at_once) {
    const std::size_t count = std::min(rows_at_once, rows - first);
    from.take(values.data(), count * columns.size() * sizeof(double));
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (columns[c] == nullptr) continue;
      for (std::size_t i = 0; i < count; ++i) {
        columns[c][first + i] = values[i * columns.size() + c];
      }
    }
  }
}

}  // namespace fields
