// A group of ranks whose calls come late by times of their own, so that messages overtake each
// other.
#pragma once

#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <utility>

#include "ranks/GroupAround.hpp"

namespace test_ranks {

/// Waits every second time, up to a fifth of a millisecond.
class Delay {
 public:
  explicit Delay(unsigned seed) : generator_(seed) {}

  void operator()() {
    if (generator_() % 2 == 0) return;
    std::this_thread::sleep_for(std::chrono::microseconds(generator_() % 200));
  }

 private:
  std::mt19937 generator_;
};

class DelayedExchange final : public ExchangeAround {
 public:
  DelayedExchange(std::unique_ptr<engine::Exchange> exchange, unsigned seed)
      : ExchangeAround(std::move(exchange)), wait_(seed) {}

 private:
  void before() override { wait_(); }

  Delay wait_;
};

class DelayedGroup final : public GroupAround {
 public:
  DelayedGroup(std::unique_ptr<ranks::Group> group, unsigned seed)
      : GroupAround(std::move(group)), seed_(seed), wait_(seed + static_cast<unsigned>(rank())) {}

 private:
  void before() override { wait_(); }
  std::unique_ptr<ranks::Group> around(std::unique_ptr<ranks::Group> part) override {
    return std::make_unique<DelayedGroup>(std::move(part), seed_ + 1);
  }
  std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                           std::size_t) override {
    return std::make_unique<DelayedExchange>(std::move(exchange),
                                             seed_ + 17 * static_cast<unsigned>(rank()));
  }

  unsigned seed_;
  Delay wait_;
};

}  // namespace test_ranks
