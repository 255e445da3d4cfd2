#include "ranks/share_of.hpp"

#include <map>
#include <utility>

#include "engine/aligned_vector.hpp"

namespace ranks {

using cases::Number;
using engine::at;

std::vector<int> owners_of(const std::vector<Cells>& cells_of_ranks) {
  std::size_t count = 0;
  for (const Cells& cells : cells_of_ranks) count += cells.size();
  std::vector<int> owners(count);
  for (std::size_t rank = 0; rank < cells_of_ranks.size(); ++rank) {
    for (const Number cell : cells_of_ranks[rank]) owners[at(cell)] = static_cast<int>(rank);
  }
  return owners;
}

Share share_of(const cases::Mesh& mesh, const std::vector<Cells>& cells_of_ranks, int rank,
               int rings) {
  const std::vector<int> owners = owners_of(cells_of_ranks);
  Share share{engine::subset_of(mesh, cells_of_ranks[at(rank)], rings), {}};
  std::map<int, Halo> halos;
  for (const Number ghost : share.subset.ghosts) {
    const int owner = owners[at(ghost)];
    halos.try_emplace(owner, Halo{owner, {}, {}}).first->second.received.push_back(ghost);
  }
  // Whose cells are ghosts here has ghosts here.
  for (auto& [neighbour, halo] : halos) {
    const auto of_neighbour = engine::subset_of(mesh, cells_of_ranks[at(neighbour)], rings);
    for (const Number ghost : of_neighbour.ghosts) {
      if (owners[at(ghost)] == rank) halo.sent.push_back(ghost);
    }
    share.halos.push_back(std::move(halo));
  }
  return share;
}

}  // namespace ranks
