// A group of ranks whose calls come late by times of their own, so that messages overtake each
// other.
#pragma once

#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <utility>

#include "ranks/Group.hpp"

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

class DelayedExchange final : public engine::Exchange {
 public:
  DelayedExchange(std::unique_ptr<engine::Exchange> exchange, unsigned seed)
      : exchange_(std::move(exchange)), wait_(seed) {}

  const engine::HaloCells& halo() const override { return exchange_->halo(); }
  bool takes_memory_of_card() const override { return exchange_->takes_memory_of_card(); }
  void start_halo(const engine::PackedHalo& packed) override {
    wait_();
    exchange_->start_halo(packed);
  }
  void finish_halo() override {
    wait_();
    exchange_->finish_halo();
  }
  void start_minimum(const engine::StepMinimum& own) override {
    wait_();
    exchange_->start_minimum(own);
  }
  engine::StepMinimum finish_minimum() override {
    wait_();
    return exchange_->finish_minimum();
  }
  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override {
    wait_();
    return exchange_->unite(own, limited_before);
  }

 private:
  std::unique_ptr<engine::Exchange> exchange_;
  Delay wait_;
};

class DelayedGroup final : public ranks::Group {
 public:
  DelayedGroup(std::unique_ptr<ranks::Group> group, unsigned seed)
      : group_(std::move(group)), seed_(seed), wait_(seed + static_cast<unsigned>(rank())) {}

  int rank() const override { return group_->rank(); }
  int size() const override { return group_->size(); }
  int cores() const override { return group_->cores(); }
  int rank_on_machine() const override { return group_->rank_on_machine(); }
  void broadcast(std::span<std::byte> bytes) override {
    wait_();
    group_->broadcast(bytes);
  }
  void send(std::span<const std::byte> bytes, int to) override {
    wait_();
    group_->send(bytes, to);
  }
  void receive(std::span<std::byte> bytes, int from) override {
    wait_();
    group_->receive(bytes, from);
  }
  std::vector<ranks::Message> send_to_some(std::vector<ranks::Message> sent) override {
    wait_();
    return group_->send_to_some(std::move(sent));
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    wait_();
    group_->gather_all(own, all);
  }
  std::unique_ptr<ranks::Group> first(int members) override {
    auto group = group_->first(members);
    return group ? std::make_unique<DelayedGroup>(std::move(group), seed_ + 1) : nullptr;
  }
  std::unique_ptr<engine::Exchange> exchange(std::vector<ranks::Halo> halos) override {
    return std::make_unique<DelayedExchange>(group_->exchange(std::move(halos)),
                                             seed_ + 17 * static_cast<unsigned>(rank()));
  }

 private:
  std::unique_ptr<ranks::Group> group_;
  unsigned seed_;
  Delay wait_;
};

}  // namespace test_ranks
