#include "ranks/cut_blocks.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "engine/Range.hpp"
#include "engine/numbering.hpp"
#include "ranks/values.hpp"

namespace ranks {

namespace {

/// Where a cell lies along the curve, and behind that its number: the order of all cells.
using Key = std::uint64_t;
constexpr int bits_of_key = 64, bits_of_number = 32;
static_assert(engine::HilbertCurve::bits_of_distance + bits_of_number <= bits_of_key);

Number cell_of(Key key) { return static_cast<Number>(key & ((Key{1} << bits_of_number) - 1)); }

/// The curve over the centres of the cells of all ranks; here are those of this one. Called by all
/// ranks.
engine::HilbertCurve curve_over(Group& group, std::span<const physics::SpacePoint> centers) {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  struct Extent {
    double x_min = infinite, x_max = -infinite, y_min = infinite, y_max = -infinite;
  };
  const auto widen = [](Extent& extent, const Extent& by) {
    extent = {std::min(extent.x_min, by.x_min), std::max(extent.x_max, by.x_max),
              std::min(extent.y_min, by.y_min), std::max(extent.y_max, by.y_max)};
  };
  Extent extent;
  for (const auto& center : centers) widen(extent, {center.x, center.x, center.y, center.y});
  for (const Extent& of_rank : gather_all_plain(group, extent)) widen(extent, of_rank);
  return {extent.x_min, extent.x_max, extent.y_min, extent.y_max};
}

/// Of the cells of the block of this rank, ascending.
std::vector<Key> keys_along_curve(Group& group, const CaseBlocks& blocks) {
  const cases::Mesh& mesh = blocks.contents.mesh;
  std::vector<physics::SpacePoint> centers;
  centers.reserve(at(mesh.n_cells()));
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) centers.push_back(mesh.center_of(cell));
  const engine::HilbertCurve curve = curve_over(group, centers);
  std::vector<Key> keys;
  keys.reserve(centers.size());
  Number number = blocks.cells.begin(group.rank());
  for (const auto& center : centers) {
    const Key distance = curve.distance_of(center.x, center.y);
    keys.push_back(distance << bits_of_number | static_cast<Key>(number++));
  }
  std::sort(keys.begin(), keys.end());
  return keys;
}

/// Where in the order of all cells the run of a rank begins; a cell each, as far as they go, where
/// there are fewer cells than ranks.
std::int64_t place_of_run(int rank, int ranks, Number cells) {
  if (cells < ranks) return std::min<std::int64_t>(rank, cells);
  return engine::share_of(rank, ranks, at(cells)).begin;
}

/// The keys with which the runs of the ranks begin, of all but the first, in the order of all
/// cells, of which each rank has some: digit by digit, the smallest key up to which there are more
/// cells than before the run.
std::vector<Key> firsts_of_runs(Group& group, std::span<const Key> keys, Number cells) {
  constexpr int bits_of_digit = 4;
  constexpr std::size_t digits = 1U << bits_of_digit;
  const std::size_t runs = at(group.size() - 1);
  std::vector<Key> firsts(runs, 0);
  for (int shift = bits_of_key - bits_of_digit; shift >= 0; shift -= bits_of_digit) {
    std::vector<std::int64_t> up_to;
    for (const Key first : firsts) {
      for (Key digit = 0; digit < digits; ++digit) {
        const Key last = first | digit << shift | ((Key{1} << shift) - 1);
        up_to.push_back(std::upper_bound(keys.begin(), keys.end(), last) - keys.begin());
      }
    }
    sum_over_ranks(group, up_to);
    for (std::size_t run = 0; run < runs; ++run) {
      const auto begin = up_to.begin() + static_cast<std::ptrdiff_t>(run * digits);
      const std::int64_t before = place_of_run(static_cast<int>(run) + 1, group.size(), cells);
      const auto found = std::upper_bound(begin, begin + digits - 1, before);
      firsts[run] |= static_cast<Key>(found - begin) << shift;
    }
  }
  return firsts;
}

}  // namespace

std::vector<int> owners_along_curve(Group& group, const CaseBlocks& blocks) {
  const std::vector<Key> keys = keys_along_curve(group, blocks);
  const std::vector<Key> firsts = firsts_of_runs(group, keys, blocks.cells.total());
  const Number first = blocks.cells.begin(group.rank());
  std::vector<int> owners(keys.size());
  auto next = firsts.begin();
  for (const Key key : keys) {
    while (next != firsts.end() && *next <= key) ++next;
    owners[at(cell_of(key) - first)] = static_cast<int>(next - firsts.begin());
  }
  return owners;
}

}  // namespace ranks
