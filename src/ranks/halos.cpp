#include "ranks/halos.hpp"

#include <map>

namespace ranks {

namespace {

using cases::Number;

std::vector<int> owners_of(const std::vector<engine::Subset>& subsets) {
  std::size_t cells = 0;
  for (const engine::Subset& subset : subsets) cells += subset.owned.size();
  std::vector<int> owners(cells);
  for (std::size_t rank = 0; rank < subsets.size(); ++rank) {
    for (const Number cell : subsets[rank].owned) {
      owners[static_cast<std::size_t>(cell)] = static_cast<int>(rank);
    }
  }
  return owners;
}

}  // namespace

std::vector<std::vector<Halo>> halos_of(const std::vector<engine::Subset>& subsets) {
  const std::vector<int> owners = owners_of(subsets);
  std::vector<std::map<int, Halo>> halos(subsets.size());
  const auto between = [&](int rank, int neighbour) -> Halo& {
    return halos[static_cast<std::size_t>(rank)]
        .try_emplace(neighbour, Halo{neighbour, {}, {}})
        .first->second;
  };
  for (int rank = 0; rank < static_cast<int>(subsets.size()); ++rank) {
    for (const Number ghost : subsets[static_cast<std::size_t>(rank)].ghosts) {
      const int owner = owners[static_cast<std::size_t>(ghost)];
      between(rank, owner).received.push_back(ghost);
      between(owner, rank).sent.push_back(ghost);
    }
  }
  std::vector<std::vector<Halo>> result(subsets.size());
  for (std::size_t rank = 0; rank < halos.size(); ++rank) {
    for (auto& [neighbour, halo] : halos[rank]) result[rank].push_back(std::move(halo));
  }
  return result;
}

}  // namespace ranks
