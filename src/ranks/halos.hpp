// What ranks send each other in every step.
#pragma once

#include <vector>

#include "engine/Subset.hpp"

namespace ranks {

/// Cells whose states a rank sends to a neighbour, and those that it gets from there, by their
/// numbers in the case, ascending: both sides know the order without telling each other.
struct Halo {
  int neighbour;
  std::vector<cases::Number> sent, received;
};

/// The halos of every rank, by ascending neighbours. The subsets must hold every cell once.
std::vector<std::vector<Halo>> halos_of(const std::vector<engine::Subset>& subsets);

}  // namespace ranks
