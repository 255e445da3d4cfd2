#include "ranks/share_of.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "engine/aligned_vector.hpp"

namespace ranks {

using cases::Number;
using engine::at;

namespace {

struct Pair {
  Number left, right;
};

/// Neighbours at the rim of a part: ghosts, and own cells that others read.
std::vector<Pair> pairs_at_rim(const cases::Part& part) {
  std::vector<std::uint8_t> is_at_rim(part.cell_number.size(), 0);
  std::fill(is_at_rim.begin() + part.owned, is_at_rim.end(), 1);
  for (const Number cell : part.border) is_at_rim[at(cell)] = 1;
  std::vector<Pair> pairs;
  const cases::Mesh& mesh = part.contents.mesh;
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    if (right < 0 || is_at_rim[at(left)] == 0 || is_at_rim[at(right)] == 0) continue;
    pairs.push_back({left, right});
  }
  return pairs;
}

/// Own cells, ascending, that so many steps between neighbours reach from some ghosts. The cells on
/// such a way are all at the rim.
std::vector<Number> reached_from(const std::vector<Number>& ghosts, int steps,
                                 const cases::Part& part, const std::vector<Pair>& pairs) {
  std::vector<std::uint8_t> is_reached(part.cell_number.size(), 0);
  for (const Number cell : ghosts) is_reached[at(cell)] = 1;
  for (int step = 0; step < steps; ++step) {
    const std::vector<std::uint8_t> before = is_reached;
    for (const Pair& pair : pairs) {
      if (before[at(pair.left)] != 0) is_reached[at(pair.right)] = 1;
      if (before[at(pair.right)] != 0) is_reached[at(pair.left)] = 1;
    }
  }
  std::vector<Number> own;
  for (const Number cell : part.border) {
    if (is_reached[at(cell)] != 0) own.push_back(cell);
  }
  return own;
}

}  // namespace

engine::HaloCells cells_of(const std::vector<Halo>& halos) {
  engine::HaloCells cells;
  for (const Halo& halo : halos) {
    cells.sent.insert(cells.sent.end(), halo.sent.begin(), halo.sent.end());
    cells.received.insert(cells.received.end(), halo.received.begin(), halo.received.end());
  }
  return cells;
}

std::vector<int> owners_of(const std::vector<Cells>& cells_of_ranks) {
  std::size_t count = 0;
  for (const Cells& cells : cells_of_ranks) count += cells.size();
  std::vector<int> owners(count);
  for (std::size_t rank = 0; rank < cells_of_ranks.size(); ++rank) {
    for (const Number cell : cells_of_ranks[rank]) owners[at(cell)] = static_cast<int>(rank);
  }
  return owners;
}

std::vector<Halo> halos_of(const cases::Part& part, const std::vector<int>& owners_of_ghosts,
                           int rings) {
  std::map<int, Halo> by_neighbour;
  for (Number ghost = 0; ghost < part.ghosts(); ++ghost) {
    const int owner = owners_of_ghosts[at(ghost)];
    Halo& halo = by_neighbour.try_emplace(owner, Halo{owner, {}, {}}).first->second;
    halo.received.push_back(part.owned + ghost);
  }
  const std::vector<Pair> pairs = pairs_at_rim(part);
  std::vector<Halo> halos;
  for (auto& [neighbour, halo] : by_neighbour) {
    // Whom a cell reaches in so many steps reaches it.
    halo.sent = reached_from(halo.received, rings, part, pairs);
    halos.push_back(std::move(halo));
  }
  return halos;
}

Share share_of(cases::PartCutter& cutter, const Cells& cells, const std::vector<int>& owners,
               int rings) {
  Share share{cutter.part_of(cells, rings), {}};
  std::vector<int> owners_of_ghosts;
  for (std::size_t k = cells.size(); k < share.part.cell_number.size(); ++k) {
    owners_of_ghosts.push_back(owners[at(share.part.cell_number[k])]);
  }
  share.halos = halos_of(share.part, owners_of_ghosts, rings);
  return share;
}

}  // namespace ranks
