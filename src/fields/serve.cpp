#include "fields/serve.hpp"

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "fields/FlowOfRank.hpp"
#include "fields/RowsOfRank.hpp"
#include "fields/orders.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

void read_some(FlowOfRank& part, ranks::Group& group, const Order& order) {
  std::vector<Number> cells(at(order.number));
  group.broadcast(std::as_writable_bytes(std::span(cells)));
  part.read(order.field, cells, {});
}

/// Computes steps, as the clock brings them, up to a pause.
void advance_up_to_pause(FlowOfRank& part, const StepTimes& first,
                         const std::function<bool()>& is_interrupted) {
  Clock clock{first.t, first.dt, 0};
  do {
    const StepTimes times = {clock.t, first.t_start, first.t_end, clock.dt};
    clock.move(part.advance(times, {.stop = is_interrupted()}), part.contents());
  } while (part.goes_on(clock));
}

/// Takes the owners of all cells from rank 0.
std::vector<int> owners_told(const FlowOfRank& part, ranks::Group& group) {
  std::vector<int> owners;
  ranks::broadcast_in(group, owners);
  return part.owners_by(owners);
}

void see(FlowOfRank& part, ranks::Group& group) {
  Look look{};
  ranks::broadcast_plain(group, look);
  part.see(look);
}

void gather_rows(int table, RowsOfRank& rows, FlowOfRank& part, ranks::Group& group) {
  RowsRequest request;
  ranks::broadcast_in(group, request);
  rows.gather(table, request, part);
}

/// Does what rank 0 orders until it ends the flow.
void serve_flow(std::unique_ptr<FlowOfRank> own, const RanksPlan& plan, ranks::Group& group,
                const std::function<bool()>& is_interrupted) {
  std::vector<BoundaryInflow> no_inflows;
  engine::State no_state;
  engine::SavedNotes no_notes;
  std::vector<double> no_values;
  ranks::CutCurve cuts;
  RowsOfRank rows(group);
  while (true) {
    Order order{};
    ranks::broadcast_plain(group, order);
    FlowOfRank& part = *own;
    switch (order.task) {
      case Task::stable_step:
        part.stable_step(order.value);
        break;
      case Task::advance:
        advance_up_to_pause(part, order.times, is_interrupted);
        break;
      case Task::keep_maxima:
        part.keep_maxima(order.value);
        break;
      case Task::note_maxima:
        part.note_maxima(order.value);
        break;
      case Task::watch:
        part.watch();
        break;
      case Task::read:
        part.read(order.field, {});
        break;
      case Task::read_some:
        read_some(part, group, order);
        break;
      case Task::state:
        part.state(order.number);
        break;
      case Task::read_inflows:
        part.read_inflows(no_inflows);
        break;
      case Task::save:
        part.save(no_state);
        break;
      case Task::save_notes:
        part.save_notes(no_notes);
        break;
      case Task::load:
        part.load(no_state);
        break;
      case Task::load_notes:
        part.load_notes(no_notes);
        break;
      case Task::weigh_ranks:
        part.seconds_of_ranks();
        break;
      case Task::find_cuts:
        cuts = part.even_cuts();
        break;
      case Task::follow_cuts:
        recut(own, part.owners_by(cuts), plan, group);
        break;
      case Task::recut:
        recut(own, owners_told(part, group), plan, group);
        break;
      case Task::look:
        see(part, group);
        break;
      case Task::save_looks:
        part.save_looks(no_values);
        break;
      case Task::load_looks:
        part.load_looks({});
        break;
      case Task::gather_rows:
        gather_rows(order.number, rows, part, group);
        break;
      case Task::pass_rows:
        rows.pass(order.number, order.rank, order.bytes);
        break;
      case Task::end:
        return;
    }
  }
}

/// Takes part in the next flow.
void serve_next_flow(ranks::Group& group, const std::function<bool()>& is_interrupted) {
  RanksPlan plan;
  ranks::broadcast_in(group, plan);
  auto part =
      std::make_unique<FlowOfRank>(ranks::receive_value<ranks::Share>(group, 0), plan, group);
  if (part->start().outcome != RankStart::Outcome::good) return;
  serve_flow(std::move(part), plan, group, is_interrupted);
}

}  // namespace

int serve(ranks::Group& group, const std::function<bool()>& is_interrupted) {
  while (true) {
    Call call;
    ranks::broadcast_plain(group, call);
    if (call.members == 0) return call.number;
    const auto members = group.first(call.members);
    if (members) serve_next_flow(*members, is_interrupted);
  }
}

void end_service(ranks::Group& group, int number) {
  Call call{0, number};
  ranks::broadcast_plain(group, call);
}

}  // namespace fields
