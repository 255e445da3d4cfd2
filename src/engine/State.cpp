#include "engine/State.hpp"

namespace engine {

bool fits(const State& state, const State& present, const cases::Case& contents) {
  const std::size_t n_cells = present.h.size();
  const auto is_whole_or_empty = [](const std::vector<double>& column, std::size_t count) {
    return column.empty() || column.size() == count;
  };
  bool fits = state.rain_clocks.size() == contents.rain.size() &&
              is_whole_or_empty(state.imposed_rain, n_cells) &&
              is_whole_or_empty(state.imposed_on_boundaries, contents.mesh.boundaries.size());
  for (const auto column : columns_of_flow) {
    // The free surface of the start is there before the first step alone.
    const bool is_of_start = column == &State::eta;
    fits = fits && (is_of_start ? is_whole_or_empty(state.eta, n_cells)
                                : (state.*column).size() == (present.*column).size());
  }
  for (std::size_t r = 0; fits && r < state.rain_clocks.size(); ++r) {
    const int interval = state.rain_clocks[r].hyetogram_index;
    fits = interval >= -1 && interval < static_cast<int>(contents.rain[r].times.size());
  }
  return fits;
}

}  // namespace engine
