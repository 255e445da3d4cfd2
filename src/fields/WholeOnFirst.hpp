// Values of all cells and boundaries on rank 0, which gathers them from the parts of all ranks and
// hands them out.
#pragma once

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "fields/parts_of_states.hpp"
#include "ranks/share_of.hpp"
#include "ranks/values.hpp"

namespace fields {

/// Every function is called on all ranks; nothing of all is looked at or filled but on rank 0. Once
/// the first values of all are wanted, rank 0 knows which cells and boundaries every rank has.
class WholeOnFirst {
 public:
  /// `own_numbers` answers the numbers of the cells and boundaries of this rank. The group must
  /// outlive it.
  WholeOnFirst(ranks::Group& group, std::function<Entries()> own_numbers)
      : group_(group), own_numbers_(std::move(own_numbers)) {}

  /// Rank 0 hears which cells and boundaries every rank has, and knows what follows.
  void learn();
  std::size_t number_of(Over over) const;

  /// Values of own cells, put into those of all.
  void gather(std::span<const double> own, std::span<double> all);
  /// The same of some cells: own ones, at these places among them.
  void gather_some(const std::vector<cases::Number>& places, const std::vector<double>& own,
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
  ranks::Group& group_;
  std::function<Entries()> own_numbers_;
  bool is_learned_ = false;
  std::vector<Entries> of_ranks_;  ///< on rank 0
  std::vector<double> received_;   ///< kept for its memory
};

template <class Value>
void WholeOnFirst::gather_over_boundaries(std::vector<Value> own, std::vector<Value>& all) {
  learn();
  if (!is_first()) return group_.send(std::as_bytes(std::span(own)), 0);
  all.resize(number_of(Over::boundaries));
  for (int rank = 0; rank < group_.size(); ++rank) {
    const std::vector<cases::Number>& numbers = of_ranks_[cases::at(rank)].boundaries;
    own.resize(numbers.size());
    if (rank > 0) group_.receive(std::as_writable_bytes(std::span(own)), rank);
    for (std::size_t k = 0; k < numbers.size(); ++k) all[cases::at(numbers[k])] = own[k];
  }
}

template <class Value>
void WholeOnFirst::gather_parts(const Value& own, Value& all) {
  learn();
  if (!is_first()) return ranks::send_value(group_, own, 0);
  take_the_rest(all, own);
  for (int rank = 0; rank < group_.size(); ++rank) {
    const Value part = rank == 0 ? own : ranks::receive_value<Value>(group_, rank);
    put_part(part, of_ranks_[cases::at(rank)], number_of(Over::cells), number_of(Over::boundaries),
             all);
  }
}

template <class Value>
Value WholeOnFirst::own_part_of(const Value& all) {
  learn();
  if (!is_first()) return ranks::receive_value<Value>(group_, 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    ranks::send_value(group_, part_of(all, of_ranks_[cases::at(rank)]), rank);
  }
  return part_of(all, of_ranks_.front());
}

}  // namespace fields
