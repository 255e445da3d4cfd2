#include "ranks/cut_blocks.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>

#include "engine/Range.hpp"
#include "ranks/cuts_by_weight.hpp"

namespace ranks {

namespace {

/// The cells of the block of this rank along the curve.
std::vector<CurvePlace> cells_on_curve(Group& group, const CaseBlocks& blocks) {
  const cases::Mesh& mesh = blocks.contents.mesh;
  std::vector<physics::SpacePoint> centers;
  centers.reserve(at(mesh.n_cells()));
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) centers.push_back(mesh.center_of(cell));
  const engine::HilbertCurve curve = curve_over(group, centers);
  std::vector<CurvePlace> cells;
  cells.reserve(centers.size());
  Number number = blocks.cells.begin(group.rank());
  for (const auto& center : centers) {
    cells.push_back({curve.distance_of(center.x, center.y), number++});
  }
  std::sort(cells.begin(), cells.end());
  return cells;
}

/// Where the ranks begin to sort: places along the curve that cut it into runs of a like number of
/// cells. Every rank tells as many cells of its own, evenly spaced among them.
std::vector<CurvePlace> splitters(Group& group, const std::vector<CurvePlace>& cells) {
  constexpr std::size_t told_by_each = 64;
  constexpr CurvePlace nothing = {std::numeric_limits<std::uint64_t>::max(), -1};
  std::array<CurvePlace, told_by_each> own;
  own.fill(nothing);
  for (std::size_t k = 0; k < told_by_each && !cells.empty(); ++k) {
    own[k] = cells[cells.size() * k / told_by_each];
  }
  std::vector<CurvePlace> all;
  for (const auto& of_rank : gather_all_plain(group, own)) {
    all.insert(all.end(), of_rank.begin(), of_rank.end());
  }
  std::sort(all.begin(), all.end());
  while (!all.empty() && all.back().distance == nothing.distance) all.pop_back();
  std::vector<CurvePlace> first(1, {0, 0});  // of rank 0: everything up to the next
  const auto ranks = static_cast<std::size_t>(group.size());
  for (std::size_t rank = 1; rank < ranks; ++rank) first.push_back(all[all.size() * rank / ranks]);
  return first;
}

/// The owner of the cell at a place in the order along the curve, of so many cells.
int owner_at(std::int64_t place, int ranks, std::size_t cells) {
  if (cells < at(ranks)) return static_cast<int>(place);  // a cell each, as far as they go
  int owner = static_cast<int>(place * ranks / static_cast<std::int64_t>(cells));
  while (engine::share_of(owner, ranks, cells).end <= place) ++owner;
  while (engine::share_of(owner, ranks, cells).begin > place) --owner;
  return owner;
}

using CellsOfRank = std::pair<int, std::vector<CurvePlace>>;

/// The owners of cells that ranks sent here to be sorted, all those between two places along the
/// curve, of which the first is known in the whole order.
std::map<int, std::vector<int>> owners_of_sorted(const std::vector<CellsOfRank>& sent,
                                                 std::int64_t first_place, int ranks,
                                                 std::size_t cells_of_all) {
  struct Sorted {
    CurvePlace cell;
    int sender;
    std::size_t place;
  };
  std::vector<Sorted> sorted;
  std::map<int, std::vector<int>> owners;
  for (const auto& [sender, cells] : sent) {
    for (std::size_t k = 0; k < cells.size(); ++k) sorted.push_back({cells[k], sender, k});
    owners[sender].resize(cells.size());
  }
  std::sort(sorted.begin(), sorted.end(),
            [](const Sorted& a, const Sorted& b) { return a.cell < b.cell; });
  for (const Sorted& cell : sorted) {
    owners[cell.sender][cell.place] = owner_at(first_place++, ranks, cells_of_all);
  }
  return owners;
}

}  // namespace

std::vector<int> owners_along_curve(Group& group, const CaseBlocks& blocks) {
  const std::vector<CurvePlace> cells = cells_on_curve(group, blocks);
  const std::vector<CurvePlace> firsts = splitters(group, cells);
  std::map<int, std::vector<CurvePlace>> runs;
  for (const CurvePlace& cell : cells) {
    const auto next = std::upper_bound(firsts.begin() + 1, firsts.end(), cell);
    runs[static_cast<int>(next - firsts.begin()) - 1].push_back(cell);
  }
  const std::vector<CellsOfRank> here = exchange_values(group, runs);
  Number count = 0;
  for (const auto& [sender, sent] : here) count += static_cast<Number>(sent.size());
  const Blocks places(group, count);
  const auto owners =
      owners_of_sorted(here, places.begin(group.rank()), group.size(), at(blocks.cells.total()));
  const Number first = blocks.cells.begin(group.rank());
  std::vector<int> owners_here(cells.size());
  for (const auto& [sorter, of_run] : exchange_values(group, std::move(owners))) {
    for (std::size_t k = 0; k < of_run.size(); ++k) {
      owners_here[at(runs[sorter][k].cell - first)] = of_run[k];
    }
  }
  return owners_here;
}

}  // namespace ranks
