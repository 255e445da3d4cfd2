#include "ranks/InProcess.hpp"

#include <map>
#include <utility>

namespace ranks {

using cases::Number;
using engine::at;

void SharedMinimum::tell(const engine::StepMinimum& own) {
  const std::lock_guard lock(mutex_);
  present_ = engine::smallest_of(present_, own);
  if (++told_ < ranks_) return;
  last_ = std::exchange(present_, {});
  told_ = 0;
  ++rounds_;
  changed_.notify_all();
}

engine::StepMinimum SharedMinimum::wait(long round) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return rounds_ > round; });
  return last_;  // nobody ends the next round before all have seen this one
}

/// The exchange of one rank.
class InProcess::Rank : public engine::Exchange {
 public:
  struct Neighbour {
    Halo halo;
    Mailbox *to, *from;
  };

  Rank(SharedMinimum& minimum, std::vector<Neighbour> neighbours)
      : minimum_(minimum), neighbours_(std::move(neighbours)) {}

  void start_halo(engine::Tables& tables) override {
    for (const Neighbour& neighbour : neighbours_) {
      neighbour.to->post([&](std::vector<double>& values) {
        engine::for_each_halo_column(tables.cells, [&](const engine::Column& column) {
          for (const Number cell : neighbour.halo.sent) {
            values.push_back(column[at(tables.place[at(cell)])]);
          }
        });
      });
    }
  }

  void finish_halo(engine::Tables& tables) override {
    for (const Neighbour& neighbour : neighbours_) {
      neighbour.from->take([&](const std::vector<double>& values) {
        auto value = values.begin();
        engine::for_each_halo_column(tables.cells, [&](engine::Column& column) {
          for (const Number cell : neighbour.halo.received) {
            column[at(tables.place[at(cell)])] = *value++;
          }
        });
      });
    }
  }

  void start_minimum(const engine::StepMinimum& own) override { minimum_.tell(own); }
  engine::StepMinimum finish_minimum() override { return minimum_.wait(round_++); }

 private:
  SharedMinimum& minimum_;
  std::vector<Neighbour> neighbours_;
  long round_ = 0;
};

InProcess::InProcess(const std::vector<engine::Subset>& subsets)
    : minimum_(static_cast<int>(subsets.size())) {
  std::map<std::pair<int, int>, Mailbox*> from_to;
  const auto mailbox = [&](int from, int to) {
    Mailbox*& box = from_to[{from, to}];
    if (box == nullptr) box = &mailboxes_.emplace_back();
    return box;
  };
  int rank = 0;
  for (std::vector<Halo>& halos : halos_of(subsets)) {
    std::vector<Rank::Neighbour> neighbours;
    for (Halo& halo : halos) {
      const int other = halo.neighbour;
      neighbours.push_back({std::move(halo), mailbox(rank, other), mailbox(other, rank)});
    }
    ranks_.push_back(std::make_unique<Rank>(minimum_, std::move(neighbours)));
    ++rank;
  }
}

InProcess::~InProcess() = default;

engine::Exchange& InProcess::exchange(int rank) { return *ranks_[at(rank)]; }

}  // namespace ranks
