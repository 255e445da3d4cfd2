#include "fields/FlowOfRank.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <utility>

#include "fields/moving_cells.hpp"
#include "fields/parts_of_states.hpp"
#include "ranks/Blocks.hpp"
#include "ranks/share_anew.hpp"
#include "ranks/values.hpp"

namespace fields {

using cases::at;
using cases::Number;
using Outcome = RankStart::Outcome;

namespace {

/// The patches that one process would have with the threads of all ranks, but some tens for a rank,
/// where they do not get too small by that: the work of a patch is all or none, so that small ones
/// tell better where the water is, and what to give to others. Of cells in bands few take part: all
/// of them would be some percent faster in larger patches.
int cells_per_patch_for(const RanksPlan& plan, int ranks, const cases::Part& part) {
  if (plan.processor.device != engine::Device::none) return 0;  // has its own
  constexpr int patches = 32, fewest = 256, grain = engine::cells_of_shortest;
  const std::int64_t cells = part.owned;
  return std::min(engine::cells_per_patch_for(cells * ranks, plan.threads * ranks),
                  std::max(part.band.empty() ? fewest : grain,
                           static_cast<int>(cells / patches / grain * grain)));
}

}  // namespace

/// The cells of the rank as looks see them.
class FlowOfRank::OwnPart final : public FlowPart {
 public:
  explicit OwnPart(const FlowOfRank& flow) : flow_(flow) {}

  Number count() const override { return flow_.part_.owned; }
  Number number(Number k) const override { return flow_.part_.cell_number[at(k)]; }
  const cases::Case& contents() const override { return flow_.part_.contents; }
  Number in_case(Number k) const override { return k; }
  bool has(Number cell) const override { return cell < count(); }
  void read(Field field, std::span<double> values) const override {
    flow_.fields_->read(field, values);
  }
  UnseenDepth unseen_depth(Number k) const override {
    const engine::UnseenDepths depths = flow_.engine_->unseen_depths(k);
    return {depths.recovered, depths.lifted, depths.taken_discharge};
  }
  BoundaryInflow boundary_inflow(int boundary) const override {
    return flow_.engine_->boundary_inflow(boundary);
  }

 private:
  const FlowOfRank& flow_;
};

FlowOfRank::FlowOfRank(ranks::Share share, const RanksPlan& plan, ranks::Group& group,
                       const RankStart* before)
    : group_(group), part_(std::move(share.part)) {
  exchange_ = group.exchange(std::move(share.halos));
  start_ = start_engine(plan);
  if (before == nullptr) {
    agree_on_start();
  } else {
    agree_on_start_after(*before);
  }
}

RankStart FlowOfRank::start_engine(const RanksPlan& plan) {
  try {
    engine::Processor processor = plan.processor;
    processor.number_on_machine = group_.rank_on_machine();
    engine_ = std::make_unique<engine::Engine>(part_, *exchange_, plan.threads,
                                               cells_per_patch_for(plan, group_.size(), part_),
                                               processor);
    fields_ = std::make_unique<TableFields>(part_.contents, *engine_);
    return {.threads = engine_->threads(), .run_on = {engine_->instruction_set()}};
  } catch (const std::length_error& error) {
    return {Outcome::no_room_in_tables, error.what()};
  } catch (const std::exception& error) {
    return {Outcome::failed, error.what()};
  }
}

void FlowOfRank::agree_on_start() {
  if (is_first()) {
    for (int rank = 1; rank < group_.size(); ++rank) {
      auto other = ranks::receive_value<RankStart>(group_, rank);
      start_.threads = std::min(start_.threads, other.threads);
      start_.run_on.insert(start_.run_on.end(), other.run_on.begin(), other.run_on.end());
      if (start_.outcome != Outcome::good) continue;
      start_.outcome = other.outcome;
      start_.trouble = std::move(other.trouble);
    }
  } else {
    ranks::send_value(group_, start_, 0);
  }
  ranks::broadcast_plain(group_, start_.outcome);
}

void FlowOfRank::agree_on_start_after(const RankStart& before) {
  const std::vector<Outcome> outcomes = ranks::gather_all_plain(group_, start_.outcome);
  const auto bad = std::find_if(outcomes.begin(), outcomes.end(),
                                [](Outcome outcome) { return outcome != Outcome::good; });
  start_ = before;
  if (bad != outcomes.end()) start_.outcome = *bad;
}

bool FlowOfRank::goes_on(const Clock& clock) const {
  const engine::Wishes wishes = engine_->wishes();
  return !wishes.stop && clock.t < wishes.pause && !clock.has_collapsed();
}

double FlowOfRank::advance(const StepTimes& times, const engine::Wishes& own) {
  const double step = engine_->advance(times, own);
  not_hyperbolic_.reset();
  if (engine_->any_rank_was_not_hyperbolic()) gather_not_hyperbolic();
  if (is_watched_) looks().add_step(times.dt);
  return step;
}

void FlowOfRank::watch() {
  engine_->watch(part_.contents.t_start);
  is_watched_ = true;
  looks();
}

PartLooks& FlowOfRank::looks() {
  if (!looks_) looks_ = std::make_unique<PartLooks>(own_part());
  return *looks_;
}

const FlowPart& FlowOfRank::own_part() {
  if (!own_part_) own_part_ = std::make_unique<OwnPart>(*this);
  return *own_part_;
}

const ranks::RowPlan& FlowOfRank::row_plan() {
  if (row_plan_) return *row_plan_;
  std::vector<Number> own;
  for (Number k = 0; k < own_part().count(); ++k) own.push_back(own_part().number(k));
  return row_plan_.emplace(own, group_);
}

void FlowOfRank::read_rows(const std::vector<Field>& fields, std::vector<double>& values) {
  own_values_.resize(at(own_part().count()));
  const std::size_t rows = row_plan().rows();
  values.resize(rows * fields.size());
  for (std::size_t k = 0; k < fields.size(); ++k) {
    fields_->read(fields[k], own_values_);
    row_plan().send(own_values_, std::span(values).subspan(k * rows, rows), group_);
  }
}

void FlowOfRank::centres_of_rows(std::vector<double>& values) {
  constexpr std::array axes = {&physics::SpacePoint::x, &physics::SpacePoint::y,
                               &physics::SpacePoint::z};
  own_values_.resize(at(own_part().count()));
  const std::size_t rows = row_plan().rows();
  values.resize(rows * axes.size());
  for (std::size_t axis = 0; axis < axes.size(); ++axis) {
    for (std::size_t k = 0; k < own_values_.size(); ++k) {
      const Number cell = own_part().in_case(static_cast<Number>(k));
      own_values_[k] = part_.contents.mesh.center_of(cell).*axes[axis];
    }
    row_plan().send(own_values_, std::span(values).subspan(axis * rows, rows), group_);
  }
}

Seen FlowOfRank::see(const Look& look) {
  Seen seen = looks().see(look);
  ranks::hear_on_first(
      group_, [&](int rank) { add(seen, ranks::receive_value<Seen>(group_, rank)); },
      [&](int rank) { ranks::send_value(group_, seen, rank); });
  return seen;
}

/// The rank of the cell tells rank 0.
void FlowOfRank::gather_not_hyperbolic() {
  not_hyperbolic_ = engine_->not_hyperbolic();
  engine::NotHyperbolic found = not_hyperbolic_.value_or(engine::NotHyperbolic{-1, -1, 0, 0, 0});
  const auto bytes = std::as_writable_bytes(std::span(&found, 1));
  if (!is_first()) return group_.send(bytes, 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    group_.receive(bytes, rank);
    if (found.edge >= 0) not_hyperbolic_ = found;
  }
}

void FlowOfRank::read(Field field, std::span<const Number> cells, std::span<double> values) {
  std::vector<Number> own, places;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!owns(cells[i])) continue;
    own.push_back(part_.own_cell(cells[i]));
    places.push_back(static_cast<Number>(i));
  }
  own_values_.resize(own.size());
  fields_->read(field, own, own_values_);
  using Some = std::pair<std::vector<Number>, std::vector<double>>;
  std::map<int, Some> sent;
  if (is_first()) place(own_values_, places, values);
  if (!is_first() && !places.empty()) sent[0] = {places, own_values_};
  for (const auto& [rank, some] : ranks::exchange_values(group_, std::move(sent))) {
    place(some.second, some.first, values);
  }
}

std::vector<engine::Work> FlowOfRank::work_of_ranks() {
  return ranks::gather_all_plain(group_, engine_->end_window());
}

void FlowOfRank::lay_plots() {
  auto laid = std::make_shared<Plots>(Plots{ranks::squares_over(group_, part_), {}, {}});
  const std::vector<int> of_cells = ranks::squares_of(laid->squares, part_);
  laid->cells.assign(at(laid->squares.count()), 0);
  for (Number cell = 0; cell < part_.owned; ++cell) ++laid->cells[at(of_cells[at(cell)])];
  ranks::add_up_on_first(group_, laid->cells);
  if (is_first()) {
    laid->along_curve = laid->squares.along_curve();
  } else {
    laid->cells = {};
  }
  plots_ = std::move(laid);
}

std::vector<double> FlowOfRank::surface_of_squares() {
  std::vector<double> surface(at(plots_->squares.count()), 0.0);
  own_values_.resize(at(part_.owned));
  for (const Field field : {Field::bed_level, Field::depth}) {
    fields_->read(field, own_values_);
    for (std::size_t k = 0; k < own_values_.size(); ++k) {
      surface[at(square_of_cell_[k])] += own_values_[k];
    }
  }
  return surface;
}

NewDeal FlowOfRank::deal_anew() {
  if (!plots_) lay_plots();
  if (square_of_cell_.empty()) square_of_cell_ = ranks::squares_of(plots_->squares, part_);
  const std::vector<char> is_busy = engine_->busy();
  std::vector<int> busy(at(plots_->squares.count()), 0);
  for (std::size_t k = 0; k < is_busy.size(); ++k) busy[at(square_of_cell_[k])] += is_busy[k];
  std::vector<double> surface = surface_of_squares();
  const std::vector<double> of_ranks = ranks::gather_all_plain(
      group_, static_cast<double>(std::count(is_busy.begin(), is_busy.end(), 1)));
  ranks::add_up_on_first(group_, busy);
  ranks::add_up_on_first(group_, surface);
  if (!is_first()) return {};
  const ranks::CellsOfSquares cells = {plots_->cells, std::move(busy), std::move(surface)};
  NewDeal found{ranks::deal_out_cells(plots_->squares, plots_->along_curve, cells, group_.size()),
                ranks::imbalance_of(of_ranks), 0.0};
  found.imbalance = ranks::imbalance_of(ranks::loads_of(found.deal, cells, group_.size()));
  return found;
}

void FlowOfRank::set_bands(const ranks::Deal& deal, cases::Part& part) const {
  if (deal.bands.empty()) return;
  part.band = cases::entries_of(deal.bands, ranks::squares_of(plots_->squares, part));
  part.band.resize(at(part.owned));
}

std::vector<int> FlowOfRank::owners_by(const ranks::Deal& deal) const {
  return cases::entries_of(deal.owners, square_of_cell_);
}

CellState FlowOfRank::state(Number cell) {
  const bool is_own = owns(cell);
  if (is_first() && is_own) return fields_->state(part_.own_cell(cell));
  std::map<int, CellState> sent;
  if (is_own) sent[0] = fields_->state(part_.own_cell(cell));
  const auto received = ranks::exchange_values(group_, std::move(sent));
  return received.empty() ? CellState{} : received.front().second;
}

void FlowOfRank::move_to(FlowOfRank& next, const std::vector<int>& owners) {
  MovingCells own;
  own.numbers = {part_.cell_number.begin(), part_.cell_number.begin() + part_.owned};
  engine_->save(own.state);
  if (is_watched_) engine_->save_notes(own.notes.emplace());
  if (looks_) own.infiltrated = looks_->infiltrated();
  own.awake = engine_->awake();
  MovingCells moved = fields::moved(own, owners, group_);
  const auto& maxima = engine_->tables().maxima;
  if (maxima) next.keep_maxima(maxima->arrival_depth);
  next.engine_->set_state(moved.state);
  next.engine_->set_awake(moved.awake);
  if (is_watched_) {
    next.watch();
    next.engine_->load_notes(*moved.notes);
  }
  next.plots_ = plots_;
  if (looks_) next.looks().go_on_from(*looks_, std::move(moved.infiltrated));
}

namespace {

bool go_on_with(std::unique_ptr<FlowOfRank>& flow, const std::vector<int>& owners,
                const ranks::Deal& deal, const RanksPlan& plan, ranks::Group& group) {
  ranks::Share share = ranks::share_anew(group, flow->part(), owners);
  flow->set_bands(deal, share.part);
  auto next = std::make_unique<FlowOfRank>(std::move(share), plan, group, &flow->start());
  if (next->start().outcome != Outcome::good) return false;
  flow->move_to(*next, owners);
  flow = std::move(next);
  return true;
}

Recut measured_recut(std::unique_ptr<FlowOfRank>& flow, const std::vector<int>& owners,
                     const ranks::Deal& deal, const RanksPlan& plan, ranks::Group& group) {
  const double begun = engine::seconds_of_thread();
  const bool is_done = go_on_with(flow, owners, deal, plan, group);
  const std::vector<double> seconds =
      ranks::gather_all_plain(group, engine::seconds_of_thread() - begun);
  return {is_done, *std::max_element(seconds.begin(), seconds.end())};
}

}  // namespace

Recut recut(std::unique_ptr<FlowOfRank>& flow, const std::vector<int>& owners,
            const RanksPlan& plan, ranks::Group& group) {
  return measured_recut(flow, owners, {}, plan, group);
}

Recut recut(std::unique_ptr<FlowOfRank>& flow, const ranks::Deal& deal, const RanksPlan& plan,
            ranks::Group& group) {
  return measured_recut(flow, flow->owners_by(deal), deal, plan, group);
}

}  // namespace fields
