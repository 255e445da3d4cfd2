// Values from rank to rank, as utils/bytes.hpp makes bytes of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>
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

/// Gathers bytes to blocks, each of which all other ranks get; rank 0 has one.
class BroadcastSink : public utils::ByteSink {
 public:
  static constexpr std::size_t block = 4 << 20;

  explicit BroadcastSink(Group& group) : group_(group) {}

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
    broadcast_plain(group_, count);
    group_.broadcast(bytes_);
    bytes_.clear();
  }

 private:
  Group& group_;
  utils::Bytes bytes_;
};

/// Where they come out on the other ranks.
class BroadcastSource : public utils::ByteSource {
 public:
  explicit BroadcastSource(Group& group) : group_(group) {}

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
    broadcast_plain(group_, count);
    bytes_.resize(count);
    group_.broadcast(bytes_);
    taken_ = 0;
  }

  Group& group_;
  utils::Bytes bytes_;
  std::size_t taken_ = 0;
};

/// Any value, block by block: on rank 0, and on the others.
template <class Value>
void broadcast_out(Group& group, const Value& value) {
  BroadcastSink sink(group);
  const utils::ByteWriter write(sink);
  write(value);
  sink.flush();
}
template <class Value>
void broadcast_in(Group& group, Value& value) {
  BroadcastSource source(group);
  const utils::ByteReader read(source);
  read(value);
}

template <class Value>
void send_value(Group& group, const Value& value, int to) {
  utils::Bytes bytes;
  utils::put_into(bytes, value);
  const auto count = static_cast<std::uint64_t>(bytes.size());
  group.send(std::as_bytes(std::span(&count, 1)), to);
  group.send(bytes, to);
}
template <class Value>
Value receive_value(Group& group, int from) {
  std::uint64_t count = 0;
  group.receive(std::as_writable_bytes(std::span(&count, 1)), from);
  utils::Bytes bytes(count);
  group.receive(bytes, from);
  Value value{};
  utils::take_out_of(bytes, value);
  return value;
}

}  // namespace ranks
