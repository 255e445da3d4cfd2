// Ranks on several machines, for all that they know.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ranks/GroupAround.hpp"

namespace test_ranks {

class OnMachines final : public GroupAround {
 public:
  /// Of every rank, the first one on its machine.
  OnMachines(std::unique_ptr<ranks::Group> group, std::vector<int> first_on_machine)
      : GroupAround(std::move(group)), firsts_(std::move(first_on_machine)) {}

  int first_on_machine() const override { return firsts_[engine::at(rank())]; }

 private:
  std::unique_ptr<ranks::Group> around(std::unique_ptr<ranks::Group> part) override {
    return std::make_unique<OnMachines>(std::move(part), firsts_);
  }
  std::unique_ptr<engine::Exchange> around(std::unique_ptr<engine::Exchange> exchange,
                                           std::size_t) override {
    return exchange;
  }

  std::vector<int> firsts_;
};

}  // namespace test_ranks
