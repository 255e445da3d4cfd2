#include "ranks/InProcess.hpp"

#include <map>
#include <utility>

namespace ranks {

using cases::Number;
using engine::at;

/// The exchange of one rank.
class InProcess::Rank : public engine::Exchange {
 public:
  struct Neighbour {
    Halo halo;
    Mailbox *to, *from;
  };

  Rank(Reductions& reductions, std::vector<Neighbour> neighbours)
      : reductions_(reductions), neighbours_(std::move(neighbours)) {}

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

  void start_minimum(const engine::StepMinimum& own) override {
    reductions_.minimum.tell(own, engine::smallest_of);
  }
  engine::StepMinimum finish_minimum() override { return reductions_.minimum.wait(minima_++); }

  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override {
    reductions_.notes.tell(
        own, [&](const auto& a, const auto& b) { return engine::united(a, b, limited_before); });
    return reductions_.notes.wait(notes_++);
  }

 private:
  Reductions& reductions_;
  std::vector<Neighbour> neighbours_;
  long minima_ = 0, notes_ = 0;  ///< rounds that this rank has seen
};

InProcess::InProcess(const std::vector<engine::Subset>& subsets)
    : reductions_{Reduction<engine::StepMinimum>(static_cast<int>(subsets.size())),
                  Reduction<physics::StepNotes>(static_cast<int>(subsets.size()))} {
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
    ranks_.push_back(std::make_unique<Rank>(reductions_, std::move(neighbours)));
    ++rank;
  }
}

InProcess::~InProcess() = default;

engine::Exchange& InProcess::exchange(int rank) { return *ranks_[at(rank)]; }

}  // namespace ranks
