// A group of ranks that counts what it exchanges.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "ranks/Group.hpp"

/// Of all ranks.
struct Counts {
  std::atomic<long> messages = 0,
                    bytes = 0;       ///< with states of ghosts, from neighbour to neighbour
  std::atomic<long> reductions = 0;  ///< in which all ranks take part
  std::atomic<long> orders = 0;      ///< broadcasts of rank 0

  void reset() { messages = bytes = reductions = orders = 0; }
};

class CountingExchange final : public engine::Exchange {
 public:
  /// Of an exchange that sends so many messages in a step.
  CountingExchange(std::unique_ptr<engine::Exchange> exchange, std::size_t messages, bool is_first,
                   Counts& counts)
      : exchange_(std::move(exchange)),
        messages_(static_cast<long>(messages)),
        is_first_(is_first),
        counts_(counts) {}

  const engine::HaloCells& halo() const override { return exchange_->halo(); }
  bool takes_memory_of_card() const override { return exchange_->takes_memory_of_card(); }
  void start_halo(const engine::PackedHalo& packed) override {
    counts_.messages += messages_;
    counts_.bytes += static_cast<long>(halo().sent.size() * sizeof(double)) * packed.columns;
    exchange_->start_halo(packed);
  }
  void finish_halo() override { exchange_->finish_halo(); }
  void start_minimum(const engine::StepMinimum& own) override {
    if (is_first_) ++counts_.reductions;
    exchange_->start_minimum(own);
  }
  engine::StepMinimum finish_minimum() override { return exchange_->finish_minimum(); }
  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override {
    if (is_first_) ++counts_.reductions;
    return exchange_->unite(own, limited_before);
  }

 private:
  std::unique_ptr<engine::Exchange> exchange_;
  long messages_;
  bool is_first_;
  Counts& counts_;
};

class CountingGroup final : public ranks::Group {
 public:
  CountingGroup(std::unique_ptr<ranks::Group> group, Counts& counts)
      : group_(std::move(group)), counts_(counts) {}

  int rank() const override { return group_->rank(); }
  int size() const override { return group_->size(); }
  int cores() const override { return group_->cores(); }
  int rank_on_machine() const override { return group_->rank_on_machine(); }
  void broadcast(std::span<std::byte> bytes) override {
    if (rank() == 0) ++counts_.orders;
    group_->broadcast(bytes);
  }
  void send(std::span<const std::byte> bytes, int to) override { group_->send(bytes, to); }
  void receive(std::span<std::byte> bytes, int from) override { group_->receive(bytes, from); }
  std::vector<ranks::Message> send_to_some(std::vector<ranks::Message> sent) override {
    return group_->send_to_some(std::move(sent));
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    if (rank() == 0) ++counts_.reductions;
    group_->gather_all(own, all);
  }
  std::unique_ptr<ranks::Group> first(int members) override {
    auto group = group_->first(members);
    return group ? std::make_unique<CountingGroup>(std::move(group), counts_) : nullptr;
  }
  std::unique_ptr<engine::Exchange> exchange(std::vector<ranks::Halo> halos) override {
    const std::size_t messages = halos.size();
    return std::make_unique<CountingExchange>(group_->exchange(std::move(halos)), messages,
                                              rank() == 0, counts_);
  }

 private:
  std::unique_ptr<ranks::Group> group_;
  Counts& counts_;
};
