// A group of ranks that counts what it exchanges.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "ranks/GroupAround.hpp"

namespace test_ranks {

/// Of all ranks.
struct Counts {
  std::atomic<long> messages = 0,
                    bytes = 0;       ///< with states of ghosts, from neighbour to neighbour
  std::atomic<long> reductions = 0;  ///< in which all ranks take part
  std::atomic<long> orders = 0;      ///< broadcasts of rank 0

  void reset() { messages = bytes = reductions = orders = 0; }
};

class CountingExchange final : public ExchangeAround {
 public:
  /// Of an exchange that sends so many messages in a step.
  CountingExchange(std::unique_ptr<engine::Exchange> exchange, std::size_t messages, bool is_first,
                   Counts& counts)
      : ExchangeAround(std::move(exchange)),
        messages_(static_cast<long>(messages)),
        is_first_(is_first),
        counts_(counts) {}

  void start_halo(const engine::PackedHalo& packed) override {
    counts_.messages += messages_;
    counts_.bytes += static_cast<long>(halo().sent.size() * sizeof(double)) * packed.columns;
    ExchangeAround::start_halo(packed);
  }
  void start_minimum(const engine::StepMinimum& own) override {
    if (is_first_) ++counts_.reductions;
    ExchangeAround::start_minimum(own);
  }
  void start_uniting(const engine::NotedStep& own) override {
    if (is_first_) ++counts_.reductions;
    ExchangeAround::start_uniting(own);
  }

 private:
  long messages_;
  bool is_first_;
  Counts& counts_;
};

class CountingGroup final : public GroupAround {
 public:
  CountingGroup(std::unique_ptr<ranks::Group> group, Counts& counts)
      : GroupAround(std::move(group)), counts_(counts) {}

  void broadcast(std::span<std::byte> bytes) override {
    if (rank() == 0) ++counts_.orders;
    GroupAround::broadcast(bytes);
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    if (rank() == 0) ++counts_.reductions;
    GroupAround::gather_all(own, all);
  }

 private:
  std::unique_ptr<ranks::Group> around(std::unique_ptr<ranks::Group> part) override {
    return std::make_unique<CountingGroup>(std::move(part), counts_);
  }
  std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                           std::size_t messages) override {
    return std::make_unique<CountingExchange>(std::move(exchange), messages, rank() == 0, counts_);
  }

  Counts& counts_;
};

}  // namespace test_ranks
