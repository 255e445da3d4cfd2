#include "fields/RanksFlow.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "case/PartCutter.hpp"
#include "case/hll_cell.hpp"
#include "fields/missing_threads.hpp"
#include "fields/orders.hpp"
#include "ranks/values.hpp"
#include "utils/not_hyperbolic.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

/// Deals out the parts of a case, one after the other; answers that of rank 0.
ranks::Share deal_shares(const cases::Case& contents, const std::vector<ranks::Cells>& cells,
                         ranks::Group& group) {
  cases::PartCutter cutter(contents);
  const std::vector<int> owners = ranks::owners_of(cells);
  const auto share_of = [&](int rank) {
    return ranks::share_of(cutter, cells[at(rank)], owners, cases::rings_of(contents.scheme));
  };
  for (int rank = 1; rank < group.size(); ++rank) ranks::send_value(group, share_of(rank), rank);
  return share_of(0);
}

}  // namespace

RanksFlow::RanksFlow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                     const RanksRequest& request, int most_threads,
                     const engine::Processor& processor)
    : case_(contents),
      counts_(request.shared != nullptr ? request.shared->counts() : contents.mesh.counts()),
      diagnostics_(diagnostics),
      on_stop_(request.on_stop),
      largest_text_(request.largest_text),
      are_balanced_(request.are_balanced),
      plan_{1, processor} {
  ranks::Share share = request.shared != nullptr ? share_of_shared(request, most_threads)
                                                 : share_of_whole(request, most_threads);
  const double begun = engine::seconds_of_thread();
  ranks::in_step(*group_,
                 [&] { part_ = std::make_unique<FlowOfRank>(std::move(share), plan_, *group_); });
  // To share the cells out again will take as long, for all that is known.
  balance_.emplace(engine::seconds_of_thread() - begun);
  const RankStart& start = part_->start();
  switch (start.outcome) {
    case RankStart::Outcome::no_room_in_tables:
      throw std::length_error(start.trouble);
    case RankStart::Outcome::failed:
      throw std::runtime_error(start.trouble);
    case RankStart::Outcome::good:
      break;
  }
  ranks::in_step(*group_, [&] { rows_ = std::make_unique<RowsOfRank>(*group_, request.writers); });
  warn_of_missing_threads(start.threads, plan_.threads, diagnostics);
}

void RanksFlow::call_members(const RanksRequest& request, Call::Kind kind, int members,
                             int most_threads) {
  plan_.threads = engine::threads_for(counts_.cells / members, most_threads);
  call(*request.group, {kind, members});
  group_ = request.group->first(members);
  ranks::broadcast_out(*group_, plan_);
}

ranks::Share RanksFlow::share_of_whole(const RanksRequest& request, int most_threads) {
  if (cases::is_hll(case_.scheme)) cases::sides_for_hll(case_);
  const std::vector<ranks::Cells> cells = request.cut(case_.mesh, request.group->size());
  return ranks::in_step(*request.group, [&] {
    call_members(request, Call::Kind::flow, static_cast<int>(cells.size()), most_threads);
    return deal_shares(case_, cells, *group_);
  });
}

ranks::Share RanksFlow::share_of_shared(const RanksRequest& request, int most_threads) {
  if (cases::is_hll(case_.scheme)) cases::require_rain_that_falls(case_);
  const int members = std::min(request.group->size(), counts_.cells);
  return ranks::in_step(*request.group, [&] {
    call_members(request, Call::Kind::flow_of_shares, members, most_threads);
    ranks::Share share = request.shared->take_share();
    require_scheme_takes(*group_, share.part);
    return share;
  });
}

RanksFlow::~RanksFlow() {
  try {
    if (is_under_way_) {  // they hear in the step that it is the last one
      step_together({clock_.t, case_.t_start, case_.t_end, clock_.dt}, {.pause = -HUGE_VAL});
    }
    ranks::in_step(*group_, [this] { tell(*group_, {Task::end}); });
  } catch (const std::exception&) {  // the group is broken, by which the run ends
  }
}

ranks::Group& RanksFlow::waiting_ranks() const {
  if (is_under_way_) throw std::logic_error("The flow was told that it would be left alone.");
  return *group_;
}

double RanksFlow::step_together(const StepTimes& times, const engine::Wishes& own) {
  return ranks::in_step(*group_, [&] { return part_->advance(times, own); });
}

bool RanksFlow::recut(const std::vector<ranks::Cells>& cells) {
  const std::vector<int> owners = ranks::owners_of(cells);
  const Recut recut = together({Task::recut}, [&] {
    ranks::broadcast_out(*group_, owners);
    return fields::recut(part_, part_->owners_by(owners), plan_, *group_);
  });
  if (recut.is_done) ++recuts_;
  return recut.is_done;
}

FlowScales RanksFlow::scales() const {
  const engine::Tables& tables = part_->engine().tables();
  return {tables.h0, tables.char_length_min};
}

double RanksFlow::stable_step(double t) {
  return together({.task = Task::stable_step, .value = t}, [&] { return part_->stable_step(t); });
}

void RanksFlow::look_at_balance() {
  balance_->add_look(together({Task::weigh_ranks}, [&] { return part_->work_of_ranks(); }));
  if (are_balanced_ && balance_->is_time()) move_cells();
}

void RanksFlow::move_cells() {
  const NewDeal found = together({Task::deal_anew}, [&] { return part_->deal_anew(); });
  if (!balance_->pays(found.imbalance_before, found.imbalance)) return;
  const Recut recut = together({Task::follow_deal}, [&] {
    ranks::broadcast_out(*group_, found.deal);
    return fields::recut(part_, found.deal, plan_, *group_);
  });
  are_balanced_ = recut.is_done;  // where that failed once it would fail again
  if (recut.is_done) ++recuts_;
  balance_->has_moved(recut.seconds);
}

double RanksFlow::advance(const StepTimes& times) {
  if (!is_under_way_) {
    start_steps(times);
  } else if (times.t != clock_.t || times.dt != clock_.dt) {
    throw std::logic_error("The step is not that of the clock, by which the ranks went on.");
  }
  engine::Wishes own{.pause = std::exchange(pause_, -HUGE_VAL)};
  if (++steps_since_look_ == ranks::Balance::steps_between_looks) own.pause = -HUGE_VAL;
  const double step = step_together(times, own);
  clock_.move(step, case_);
  is_under_way_ = part_->goes_on(clock_);
  if (const auto& found = part_->not_hyperbolic()) {
    diagnostics_.warn(utils::not_hyperbolic(found->place, times.t, found->h, found->qx, found->qy));
  }
  if (part_->stop_is_wished() && on_stop_) on_stop_();
  return step;
}

void RanksFlow::start_steps(const StepTimes& times) {
  if (!has_started_ && are_balanced_) move_cells();
  has_started_ = true;
  if (steps_since_look_ >= ranks::Balance::steps_between_looks) {
    look_at_balance();
    steps_since_look_ = 0;
  }
  clock_ = {times.t, times.dt, 0};
  ranks::in_step(*group_, [&] { tell(*group_, {.task = Task::advance, .times = times}); });
}

void RanksFlow::keep_maxima(double arrival_depth) {
  together({.task = Task::keep_maxima, .value = arrival_depth},
           [&] { part_->keep_maxima(arrival_depth); });
}

void RanksFlow::note_maxima(double t) {
  together({.task = Task::note_maxima, .value = t}, [&] { part_->note_maxima(t); });
}

void RanksFlow::watch() {
  together({Task::watch}, [&] { part_->watch(); });
}

void RanksFlow::read(Field field, std::span<const Number> cells, std::span<double> values) const {
  std::vector<Number> sent(cells.begin(), cells.end());
  together({Task::read, field, static_cast<Number>(cells.size())}, [&] {
    group_->broadcast(std::as_writable_bytes(std::span(sent)));
    part_->read(field, cells, values);
  });
}

CellState RanksFlow::state(Number cell) const {
  if (part_->owns(cell)) return part_->state(cell);
  if (const CellState* const told = part_->engine().told_state(cell)) return *told;
  return together({.task = Task::state, .number = cell}, [&] { return part_->state(cell); });
}

Seen RanksFlow::see(Look look) const {
  return together({Task::look}, [&] {
    ranks::broadcast_plain(*group_, look);
    return part_->see(look);
  });
}

/// What the ranks see, who have their parts of it at hand.
class RanksFlow::LooksOfRanks final : public Looks {
 public:
  explicit LooksOfRanks(const RanksFlow& flow) : flow_(flow) {}

  Seen see(const Look& look) override { return flow_.see(look); }
  void add_step(double) override {}  // every rank has done it, as it advanced

 private:
  const RanksFlow& flow_;
};

std::unique_ptr<Ground> RanksFlow::ground(const cases::Case&) const {
  return std::make_unique<RanksGround>(counts_, [this](GroundQuestion question) {
    return together({Task::ground},
                    [&] { return answer_together(*group_, part_->part(), std::move(question)); });
  });
}

std::unique_ptr<Looks> RanksFlow::looks(const cases::Case&) const {
  return std::make_unique<LooksOfRanks>(*this);
}

ExecutionPath RanksFlow::execution_path() const {
  return {part_->engine().path(),
          part_->start().threads,
          part_->engine().instruction_set(),
          group_->size(),
          recuts_,
          balance_->seconds().imbalance(),
          part_->start().run_on};
}

}  // namespace fields
