// Values of all cells and boundaries on rank 0, which gathers them from the parts of all ranks and
// hands them out.
#pragma once

#include <span>
#include <vector>

#include "case/Mesh.hpp"
#include "fields/parts_of_states.hpp"
#include "ranks/share_of.hpp"
#include "ranks/values.hpp"

namespace fields {

/// Rank 0 knows which cells and boundaries every rank has; on the others nothing of all is looked
/// at or filled. What gathers and hands out is called on all ranks.
class WholeOnFirst {
 public:
  /// The group must outlive it.
  explicit WholeOnFirst(ranks::Group& group) : group_(group) {}

  /// Gathers which cells and boundaries of the whole case (ascending) every rank has.
  void gather_numbers(const Entries& own);
  int owner_of(cases::Number cell) const { return owners_[cases::at(cell)]; }
  std::size_t number_of_cells() const { return owners_.size(); }

  /// Values of own cells, put into those of all.
  void gather(std::span<const double> own, std::span<double> all);
  /// Values of those of some cells that are own ones, put into those of all of them. Ranks without
  /// any have no part in it.
  void gather_some(std::span<const cases::Number> cells, std::span<const double> own,
                   std::span<double> values);
  void hand_out(std::span<const double> all, std::span<double> own);
  /// What own boundaries have.
  template <class Value>
  void gather_over_boundaries(std::vector<Value> own, std::vector<Value>& all);
  /// A state or notes.
  template <class Value>
  void gather_parts(const Value& own, Value& all);
  template <class Value>
  Value own_part_of(const Value& all);

 private:
  bool is_first() const { return group_.rank() == 0; }
  std::size_t number_of_boundaries() const;

  ranks::Group& group_;
  std::vector<Entries> of_ranks_;  ///< what every rank has; on rank 0
  std::vector<int> owners_;        ///< of the cells; on rank 0
  std::vector<double> received_;   ///< kept for its memory
};

template <class Value>
void WholeOnFirst::gather_over_boundaries(std::vector<Value> own, std::vector<Value>& all) {
  if (!is_first()) return group_.send(std::as_bytes(std::span(own)), 0);
  all.resize(number_of_boundaries());
  for (int rank = 0; rank < group_.size(); ++rank) {
    const std::vector<cases::Number>& numbers = of_ranks_[cases::at(rank)].boundaries;
    own.resize(numbers.size());
    if (rank > 0) group_.receive(std::as_writable_bytes(std::span(own)), rank);
    for (std::size_t k = 0; k < numbers.size(); ++k) all[cases::at(numbers[k])] = own[k];
  }
}

template <class Value>
void WholeOnFirst::gather_parts(const Value& own, Value& all) {
  if (!is_first()) return ranks::send_value(group_, own, 0);
  take_the_rest(all, own);
  for (int rank = 0; rank < group_.size(); ++rank) {
    const Value part = rank == 0 ? own : ranks::receive_value<Value>(group_, rank);
    put_part(part, of_ranks_[cases::at(rank)], number_of_cells(), number_of_boundaries(), all);
  }
}

template <class Value>
Value WholeOnFirst::own_part_of(const Value& all) {
  if (!is_first()) return ranks::receive_value<Value>(group_, 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    ranks::send_value(group_, part_of(all, of_ranks_[cases::at(rank)]), rank);
  }
  return part_of(all, of_ranks_.front());
}

}  // namespace fields
