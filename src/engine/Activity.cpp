#include "engine/Activity.hpp"

#include <algorithm>
#include <utility>

namespace engine {

namespace {

bool has_inflow(const Tables& tables, const Patch& patch) {
  const auto begin = tables.boundaries.begin();
  return std::any_of(begin + patch.boundaries.begin, begin + patch.boundaries.end,
                     [](const kernels::BoundaryEdge& boundary) {
                       return boundary.kind == kernels::BoundaryKind::discharge ||
                              boundary.kind == kernels::BoundaryKind::water_level;
                     });
}

bool has_recovering_soil(const Tables& tables, std::size_t patch) {
  if (tables.soils_of_patch.empty()) return false;
  const std::vector<int>& soils = tables.soils_of_patch[patch];
  return std::any_of(soils.begin(), soils.end(), [&](int number) {
    const Soil& soil = tables.soils[at(number)];
    return (soil.is_green_ampt ? soil.green_ampt.kr : soil.horton.kr) > 0.0;
  });
}

bool has_rain(const Tables& tables, const Range& cells) {
  const auto& rain = tables.cells.rain;
  return !rain.empty() && std::any_of(rain.begin() + cells.begin, rain.begin() + cells.end,
                                      [](int hyetogram) { return hyetogram > 0; });
}

/// Whether a cell across a cut edge of a patch is wet; of those from a place on.
bool touches_water(const Tables& tables, const Patch& patch, int first_place) {
  const EdgeTable<int>& cut = tables.patches.cut_edges;
  const int edges = tables.cut_edges();
  const auto begin = tables.patches.outer_slots.begin();
  return std::any_of(begin + patch.outer_slots.begin, begin + patch.outer_slots.end, [&](int slot) {
    if (slot >= 2 * edges) return false;  // a boundary
    const int cell = slot < edges ? cut.right[at(slot)] : cut.left[at(slot - edges)];
    return cell >= first_place && physics::is_wet(tables.cells.h[at(cell)], tables.zero_depth);
  });
}

}  // namespace

Activity::Activity(const Tables& tables) {
  const std::size_t count = tables.patches.patches.size();
  can_change_.assign(count, 1);  // the first step sets free surfaces and maxima everywhere
  marks_.assign(count, 0);
  for (std::size_t p = 0; p < count; ++p) {
    const Patch& patch = tables.patches.patches[p];
    always_active_.push_back(has_inflow(tables, patch) || has_recovering_soil(tables, p));
  }
  find_rain(tables);
  for (std::vector<int>* list : {&active_, &border_, &interior_, &gone_to_rest_})
    list->reserve(count);
  with_fluxes_.reserve(count);
}

void Activity::find_rain(const Tables& tables) {
  has_rain_.clear();
  for (const Patch& patch : tables.patches.patches) {
    has_rain_.push_back(has_rain(tables, patch.cells));
  }
}

void Activity::find(const Tables& tables, bool it_rains) {
  const std::vector<Patch>& patches = tables.patches.patches;
  for (std::size_t p = 0; p < patches.size(); ++p) {
    marks_[p] = can_change_[p] != 0 || needs_no_water(static_cast<int>(p), it_rains);
  }
  gone_to_rest_.swap(active_);  // those of the step before, for now
  active_.clear();
  for (std::size_t p = 0; p < patches.size(); ++p) {
    if (marks_[p] != 0 || takes_inflow(tables, patches[p])) active_.push_back(static_cast<int>(p));
  }
  border_.clear();
  interior_.clear();
  for (const int p : active_) {
    marks_[at(p)] = 1;
    (patches[at(p)].is_border ? border_ : interior_).push_back(p);
  }
  std::erase_if(gone_to_rest_, [&](int p) { return takes_part(p); });
  with_fluxes_.clear();
  for (std::size_t p = 0; p < patches.size(); ++p) {
    if (marks_[p] != 0 || touches_mark(tables, patches[p])) {
      with_fluxes_.push_back(static_cast<int>(p));
    }
  }
}

void Activity::set(std::vector<char> marks, std::vector<char> can_change) {
  set_marks(std::move(marks));
  can_change_ = std::move(can_change);
}

void Activity::set_marks(std::vector<char> marks) {
  marks_ = std::move(marks);
  active_.clear();
  for (std::size_t p = 0; p < marks_.size(); ++p) {
    if (marks_[p] != 0) active_.push_back(static_cast<int>(p));
  }
}

bool Activity::takes_inflow(const Tables& tables, const Patch& patch) const {
  // Which patches of other ranks take part is not known here: any water at their border counts.
  if (patch.is_border && touches_water(tables, patch, tables.owned)) return true;
  return touches_mark(tables, patch) && touches_water(tables, patch, 0);
}

bool Activity::touches_mark(const Tables& tables, const Patch& patch) const {
  const auto begin = tables.patches.neighbours.begin();
  return std::any_of(begin + patch.neighbours.begin, begin + patch.neighbours.end,
                     [&](int neighbour) { return takes_part(neighbour); });
}

}  // namespace engine
