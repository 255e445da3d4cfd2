// A group of ranks that passes everything on to another one, for those that do something besides.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ranks/Group.hpp"

namespace test_ranks {

class ExchangeAround : public engine::Exchange {
 public:
  explicit ExchangeAround(std::unique_ptr<engine::Exchange> exchange)
      : exchange_(std::move(exchange)) {}

  const engine::HaloCells& halo() const override { return exchange_->halo(); }
  bool takes_memory_of_card() const override { return exchange_->takes_memory_of_card(); }
  void start_halo(const engine::PackedHalo& packed) override {
    before();
    exchange_->start_halo(packed);
  }
  void finish_halo() override {
    before();
    exchange_->finish_halo();
  }
  void start_minimum(const engine::StepMinimum& own) override {
    before();
    exchange_->start_minimum(own);
  }
  engine::StepMinimum finish_minimum() override {
    before();
    return exchange_->finish_minimum();
  }
  void start_uniting(const engine::NotedStep& own) override {
    before();
    exchange_->start_uniting(own);
  }
  engine::NotedStep finish_uniting() override {
    before();
    return exchange_->finish_uniting();
  }

 protected:
  /// Called before each of these.
  virtual void before() {}

 private:
  std::unique_ptr<engine::Exchange> exchange_;
};

class GroupAround : public ranks::Group {
 public:
  explicit GroupAround(std::unique_ptr<ranks::Group> group) : group_(std::move(group)) {}

  int rank() const override { return group_->rank(); }
  int size() const override { return group_->size(); }
  int cores() const override { return group_->cores(); }
  int rank_on_machine() const override { return group_->rank_on_machine(); }
  int first_on_machine() const override { return group_->first_on_machine(); }
  void broadcast(std::span<std::byte> bytes) override {
    before();
    group_->broadcast(bytes);
  }
  void send(std::span<const std::byte> bytes, int to) override {
    before();
    group_->send(bytes, to);
  }
  void receive(std::span<std::byte> bytes, int from) override {
    before();
    group_->receive(bytes, from);
  }
  std::vector<ranks::Message> send_to_some(std::vector<ranks::Message> sent) override {
    before();
    return group_->send_to_some(std::move(sent));
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    before();
    group_->gather_all(own, all);
  }
  std::unique_ptr<ranks::Group> first(int members) override {
    auto group = group_->first(members);
    return group ? around(std::move(group)) : nullptr;
  }
  std::unique_ptr<engine::Exchange> exchange(std::vector<ranks::Halo> halos) override {
    const std::size_t messages = halos.size();
    return around(group_->exchange(std::move(halos)), messages);
  }
  void break_up() override { group_->break_up(); }
  bool is_broken() const override { return group_->is_broken(); }

 protected:
  /// Called before each message.
  virtual void before() {}
  /// What becomes of a part of the group, and of an exchange that sends so many messages in a step.
  virtual std::unique_ptr<ranks::Group> around(std::unique_ptr<ranks::Group> part) = 0;
  virtual std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                                   std::size_t messages) = 0;

 private:
  std::unique_ptr<ranks::Group> group_;
};

}  // namespace test_ranks
