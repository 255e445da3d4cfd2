// Values from rank to rank, as utils/bytes.hpp makes bytes of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "ranks/Group.hpp"
#include "utils/bytes.hpp"

namespace ranks {

/// A value that is its bytes, from rank 0 to all others.
template <class Value>
void broadcast_plain(Group& group, Value& value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  group.broadcast(std::as_writable_bytes(std::span(&value, 1)));
}

/// A value of every rank that is its bytes, by rank, on all of them.
template <class Value>
std::vector<Value> gather_all_plain(Group& group, const Value& own) {
  static_assert(std::is_trivially_copyable_v<Value>);
  std::vector<Value> all(static_cast<std::size_t>(group.size()));
  group.gather_all(std::as_bytes(std::span(&own, 1)), std::as_writable_bytes(std::span(all)));
  return all;
}

/// Numbers, or other values that are their bytes, behind what bytes hold.
template <class Value>
void append_values(utils::Bytes& bytes, std::span<const Value> values) {
  static_assert(std::is_trivially_copyable_v<Value>);
  const auto added = std::as_bytes(values);
  bytes.insert(bytes.end(), added.begin(), added.end());
}

template <class Value>
std::vector<Value> values_of(const utils::Bytes& bytes) {
  static_assert(std::is_trivially_copyable_v<Value>);
  std::vector<Value> values(bytes.size() / sizeof(Value));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), bytes.size());
  return values;
}

/// Those of messages, in their order.
template <class Value>
std::vector<Value> values_end_to_end(std::vector<Message> messages) {
  static_assert(std::is_trivially_copyable_v<Value>);
  if (messages.size() == 1) return values_of<Value>(messages.front().bytes);
  std::size_t count = 0;
  for (const Message& message : messages) count += message.bytes.size() / sizeof(Value);
  std::vector<Value> values(count);
  Value* next = values.data();
  for (Message& message : messages) {
    if (message.bytes.empty()) continue;
    std::memcpy(next, message.bytes.data(), message.bytes.size());
    next += message.bytes.size() / sizeof(Value);
    message.bytes = {};
  }
  return values;
}

/// Each rank hears those that stand above it in a tree of pairs, hear(rank), and tells the one
/// below, tell(rank): so that rank 0 has heard of all.
template <class Hear, class Tell>
void hear_on_first(const Group& group, const Hear& hear, const Tell& tell) {
  const int rank = group.rank();
  for (int distance = 1; distance < group.size(); distance *= 2) {
    if (rank % (2 * distance) != 0) return tell(rank - distance);
    if (rank + distance < group.size()) hear(rank + distance);
  }
}

/// Sums of numbers of every rank, place by place: on rank 0, on the others anything.
template <class Number>
void add_up_on_first(Group& group, std::vector<Number>& sums) {
  const auto hear = [&](int rank) {
    std::vector<Number> above(sums.size());
    group.receive(std::as_writable_bytes(std::span(above)), rank);
    for (std::size_t k = 0; k < sums.size(); ++k) sums[k] += above[k];
  };
  hear_on_first(group, hear,
                [&](int rank) { group.send(std::as_writable_bytes(std::span(sums)), rank); });
}

/// The same on all ranks.
inline void sum_over_ranks(Group& group, std::vector<std::int64_t>& sums) {
  add_up_on_first(group, sums);
  group.broadcast(std::as_writable_bytes(std::span(sums)));
}

/// Bytes on their way to other ranks, or from one: the call of a group that moves them.
using MoveBytes = std::function<void(std::span<std::byte>)>;

/// Gathers bytes to blocks and sends each: how many bytes it has, then these.
class BlockSink : public utils::ByteSink {
 public:
  static constexpr std::size_t block = 4 << 20;

  explicit BlockSink(MoveBytes send) : send_(std::move(send)) {}

  void put(const void* from, std::size_t count) override {
    const auto* next = static_cast<const std::byte*>(from);
    while (count > 0) {
      const std::size_t taken = std::min(count, block - bytes_.size());
      bytes_.insert(bytes_.end(), next, next + taken);
      next += taken;
      count -= taken;
      if (bytes_.size() == block) flush();
    }
  }
  /// Sends what is left.
  void flush() {
    if (bytes_.empty()) return;
    auto count = static_cast<std::uint64_t>(bytes_.size());
    send_(std::as_writable_bytes(std::span(&count, 1)));
    send_(bytes_);
    bytes_.clear();
  }

 private:
  MoveBytes send_;
  utils::Bytes bytes_;
};

/// Where they come out on the other ranks.
class BlockSource : public utils::ByteSource {
 public:
  explicit BlockSource(MoveBytes receive) : receive_(std::move(receive)) {}

  void take(void* to, std::size_t count) override {
    auto* next = static_cast<std::byte*>(to);
    while (count > 0) {
      if (taken_ == bytes_.size()) receive();
      const std::size_t part = std::min(count, bytes_.size() - taken_);
      std::memcpy(next, bytes_.data() + taken_, part);
      next += part;
      taken_ += part;
      count -= part;
    }
  }
  std::uint64_t left() const override { return std::numeric_limits<std::uint64_t>::max(); }

 private:
  void receive() {
    std::uint64_t count = 0;
    receive_(std::as_writable_bytes(std::span(&count, 1)));
    bytes_.resize(count);
    receive_(bytes_);
    taken_ = 0;
  }

  MoveBytes receive_;
  utils::Bytes bytes_;
  std::size_t taken_ = 0;
};

template <class Value>
void put_in_blocks(const MoveBytes& send, const Value& value) {
  BlockSink sink(send);
  const utils::ByteWriter write(sink);
  write(value);
  sink.flush();
}
template <class Value>
void take_from_blocks(const MoveBytes& receive, Value& value) {
  BlockSource source(receive);
  const utils::ByteReader read(source);
  read(value);
}

/// Any value, block by block: from rank 0 to all others, which take it in.
template <class Value>
void broadcast_out(Group& group, const Value& value) {
  put_in_blocks([&](std::span<std::byte> bytes) { group.broadcast(bytes); }, value);
}
template <class Value>
void broadcast_in(Group& group, Value& value) {
  take_from_blocks([&](std::span<std::byte> bytes) { group.broadcast(bytes); }, value);
}

/// The same from one rank to another.
template <class Value>
void send_value(Group& group, const Value& value, int to) {
  put_in_blocks([&](std::span<std::byte> bytes) { group.send(bytes, to); }, value);
}
template <class Value>
Value receive_value(Group& group, int from) {
  Value value{};
  take_from_blocks([&](std::span<std::byte> bytes) { group.receive(bytes, from); }, value);
  return value;
}

}  // namespace ranks
