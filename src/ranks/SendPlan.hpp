// Records of a mesh on their way to the ranks that need them: which go where is found once, then
// their columns go one after the other, so that there is never a second copy of more than one.
#pragma once

#include <cstring>
#include <span>
#include <vector>

#include "ranks/Blocks.hpp"
#include "ranks/Group.hpp"
#include "ranks/values.hpp"

namespace ranks {

/// Every function is called by all ranks.
class SendPlan {
 public:
  /// Of so many records here. for_each_target(record, visit) calls visit(rank) for each rank that
  /// a record goes to, in two passes over all records.
  template <class ForEachTarget>
  SendPlan(Group& group, Number records, const ForEachTarget& for_each_target);
  /// Of the records of blocks that every rank wants by their numbers, ascending; they come in that
  /// order. The column over the block of a rank is what it then sends.
  static SendPlan of_wanted(Group& group, const std::vector<Number>& wanted, const Blocks& blocks);

  /// What comes of a column over the records of each rank: by ascending senders, and in the order
  /// of their records. Nothing goes out of a column that is empty.
  template <class Value>
  std::vector<Value> send(const std::vector<Value>& column) const;
  /// The same of a list for every record, end to end; list_of(record) gives a span.
  template <class Value, class ListOf>
  std::vector<Value> send_lists(const ListOf& list_of) const;

 private:
  struct Target {
    int rank;
    std::vector<Number> records;
  };

  explicit SendPlan(Group& group) : group_(group) {}

  Group& group_;
  std::vector<Target> targets_;
};

template <class ForEachTarget>
SendPlan::SendPlan(Group& group, Number records, const ForEachTarget& for_each_target)
    : group_(group) {
  std::vector<std::size_t> counts(static_cast<std::size_t>(group.size()), 0);
  for (Number record = 0; record < records; ++record) {
    for_each_target(record, [&](int rank) { ++counts[at(rank)]; });
  }
  std::vector<std::size_t> target_of(counts.size());
  for (std::size_t rank = 0; rank < counts.size(); ++rank) {
    target_of[rank] = targets_.size();
    if (counts[rank] == 0) continue;
    targets_.push_back({static_cast<int>(rank), {}});
    targets_.back().records.reserve(counts[rank]);
  }
  for (Number record = 0; record < records; ++record) {
    for_each_target(record,
                    [&](int rank) { targets_[target_of[at(rank)]].records.push_back(record); });
  }
}

template <class Value>
std::vector<Value> SendPlan::send(const std::vector<Value>& column) const {
  std::vector<Message> sent;
  for (const Target& target : targets_) {
    if (column.empty()) break;
    utils::Bytes& bytes = sent.emplace_back(Message{target.rank, {}}).bytes;
    bytes.resize(target.records.size() * sizeof(Value));
    std::byte* next = bytes.data();
    for (const Number record : target.records) {
      std::memcpy(next, &column[at(record)], sizeof(Value));
      next += sizeof(Value);
    }
  }
  return values_end_to_end<Value>(group_.send_to_some(std::move(sent)));
}

template <class Value, class ListOf>
std::vector<Value> SendPlan::send_lists(const ListOf& list_of) const {
  std::vector<Message> sent;
  for (const Target& target : targets_) {
    std::size_t count = 0;
    for (const Number record : target.records) count += list_of(record).size();
    utils::Bytes& bytes = sent.emplace_back(Message{target.rank, {}}).bytes;
    bytes.reserve(count * sizeof(Value));
    for (const Number record : target.records) append_values<Value>(bytes, list_of(record));
  }
  return values_end_to_end<Value>(group_.send_to_some(std::move(sent)));
}

}  // namespace ranks
