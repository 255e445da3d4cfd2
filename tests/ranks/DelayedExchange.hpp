// An exchange whose calls come late by times of their own, so that messages overtake each other.
#pragma once

#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <utility>

#include "engine/Exchange.hpp"

namespace test_ranks {

class DelayedExchange final : public engine::Exchange {
 public:
  DelayedExchange(std::unique_ptr<engine::Exchange> exchange, unsigned seed)
      : exchange_(std::move(exchange)), generator_(seed) {}

  void start_halo(engine::Tables& tables) override {
    wait();
    exchange_->start_halo(tables);
  }
  void finish_halo(engine::Tables& tables) override {
    wait();
    exchange_->finish_halo(tables);
  }
  void start_minimum(const engine::StepMinimum& own) override {
    wait();
    exchange_->start_minimum(own);
  }
  engine::StepMinimum finish_minimum() override {
    wait();
    return exchange_->finish_minimum();
  }
  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override {
    wait();
    return exchange_->unite(own, limited_before);
  }

 private:
  /// Every second time, up to a fifth of a millisecond.
  void wait() {
    if (generator_() % 2 == 0) return;
    std::this_thread::sleep_for(std::chrono::microseconds(generator_() % 200));
  }

  std::unique_ptr<engine::Exchange> exchange_;
  std::mt19937 generator_;
};

}  // namespace test_ranks
