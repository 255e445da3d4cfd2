// What one of several ranks computes of a case, and what it sends to others in every step.
#pragma once

#include <vector>

#include "case/Part.hpp"
#include "engine/Subset.hpp"

namespace ranks {

/// Cells whose states a rank sends to a neighbour, and those that it gets from there, by their
/// numbers in the case, ascending: both sides know the order without telling each other.
struct Halo {
  int neighbour;
  std::vector<cases::Number> sent, received;
};

struct Share {
  engine::Subset subset;
  std::vector<Halo> halos;  ///< by ascending neighbours
};

/// Cells by their numbers, ascending.
using Cells = std::vector<cases::Number>;

/// The rank of every cell, of the cells of every rank, which hold each cell once.
std::vector<int> owners_of(const std::vector<Cells>& cells_of_ranks);

/// The share of a rank, with so many rings of ghosts around its cells.
Share share_of(const cases::Mesh& mesh, const std::vector<Cells>& cells_of_ranks, int rank,
               int rings);

}  // namespace ranks
