// What one of several ranks computes of a case, and what it sends to others in every step.
#pragma once

#include <vector>

#include "case/PartCutter.hpp"
#include "engine/Exchange.hpp"

namespace ranks {

/// Cells whose states a rank sends to a neighbour, and those that it gets from there, by their
/// numbers in its part. Both sides have them in the order of the whole case and need not tell each
/// other.
struct Halo {
  int neighbour;
  std::vector<cases::Number> sent, received;

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.neighbour, self.sent, self.received);
  }
};

/// The cells of all halos, as an exchange has them.
engine::HaloCells cells_of(const std::vector<Halo>& halos);

struct Share {
  cases::Part part;
  std::vector<Halo> halos;  ///< by ascending neighbours

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.part, self.halos);
  }
};

/// Cells by their numbers in the whole case, ascending.
using Cells = std::vector<cases::Number>;

/// The rank of every cell, of the cells of every rank, which hold each cell once.
std::vector<int> owners_of(const std::vector<Cells>& cells_of_ranks);

/// The halos of a part with so many rings of ghosts, from the ranks of these.
std::vector<Halo> halos_of(const cases::Part& part, const std::vector<int>& owners_of_ghosts,
                           int rings);

/// The share of the rank that owns these cells.
Share share_of(cases::PartCutter& cutter, const Cells& cells, const std::vector<int>& owners,
               int rings);

}  // namespace ranks
