// Records of a file in blocks, one for every rank, in the order of the file; and how ranks get what
// stands in blocks of others.
#pragma once

#include <algorithm>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "case/Mesh.hpp"
#include "engine/aligned_vector.hpp"
#include "ranks/Group.hpp"
#include "ranks/values.hpp"

namespace ranks {

using cases::Number;
using engine::at;

/// Where the blocks of all ranks begin.
class Blocks {
 public:
  Blocks() = default;
  /// Of the lengths of the blocks, by rank.
  explicit Blocks(const std::vector<Number>& sizes) {
    for (const Number size : sizes) begins_.push_back(begins_.back() + size);
  }
  /// Of the length of the block of this rank. Called by all ranks.
  Blocks(Group& group, Number own) : Blocks(gather_all_plain(group, own)) {}

  Number begin(int rank) const { return begins_[at(rank)]; }
  Number end(int rank) const { return begins_[at(rank) + 1]; }
  Number size(int rank) const { return end(rank) - begin(rank); }
  Number total() const { return begins_.back(); }
  /// The rank whose block holds a record.
  int owner_of(Number record) const {
    const auto next = std::upper_bound(begins_.begin(), begins_.end(), record);
    return static_cast<int>(next - begins_.begin()) - 1;
  }

 private:
  std::vector<Number> begins_ = {0};
};

/// Sends a value to each of some ranks; answers those sent here, by ascending senders. Called by
/// all ranks.
template <class Value>
std::vector<std::pair<int, Value>> exchange_values(Group& group, std::map<int, Value> values) {
  std::vector<Message> sent;
  for (auto& [rank, value] : values) {
    utils::put_into(sent.emplace_back(Message{rank, {}}).bytes, value);
    value = {};  // a part of the mesh, of which there is room for few copies
  }
  std::vector<std::pair<int, Value>> received;
  for (Message& message : group.send_to_some(std::move(sent))) {
    utils::take_out_of(message.bytes, received.emplace_back(message.rank, Value{}).second);
    message.bytes = {};
  }
  return received;
}

/// A column whose entries here follow each other from a first record on, cut anew into blocks.
/// Called by all ranks.
template <class Value>
std::vector<Value> into_blocks(Group& group, const std::vector<Value>& entries, Number first,
                               const Blocks& blocks) {
  std::vector<Message> slices;
  const Number end = first + static_cast<Number>(entries.size());
  for (Number record = first; record < end;) {
    const int owner = blocks.owner_of(record);
    const Number slice_end = std::min(end, blocks.end(owner));
    append_values(slices.emplace_back(Message{owner, {}}).bytes,
                  std::span(entries).subspan(at(record - first), at(slice_end - record)));
    record = slice_end;
  }
  return values_end_to_end<Value>(group.send_to_some(std::move(slices)));
}

/// Each once, ascending.
inline void make_distinct(std::vector<Number>& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}
/// Where a number stands among distinct ones, which hold it.
inline Number place_among(const std::vector<Number>& distinct, Number number) {
  return static_cast<Number>(std::lower_bound(distinct.begin(), distinct.end(), number) -
                             distinct.begin());
}

}  // namespace ranks
