#include "fields/serve.hpp"

#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "fields/FlowOfRank.hpp"
#include "fields/RowsOfRank.hpp"
#include "fields/SharedCase.hpp"
#include "fields/orders.hpp"
#include "ranks/in_step.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

void read(FlowOfRank& part, ranks::Group& group, const Order& order) {
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

void follow_deal(std::unique_ptr<FlowOfRank>& part, const RanksPlan& plan, ranks::Group& group) {
  ranks::Deal deal;
  ranks::broadcast_in(group, deal);
  recut(part, deal, plan, group);
}

void see(FlowOfRank& part, ranks::Group& group) {
  Look look{};
  ranks::broadcast_plain(group, look);
  part.see(look);
}

void gather_rows(int number, RowsOfRank& rows, FlowOfRank& part, ranks::Group& group) {
  AnyRowsRequest any;
  ranks::broadcast_in(group, any);
  std::visit([&](const auto& request) { rows.gather(number, request, part); }, any);
}

void load_rows(FlowOfRank& part, ranks::Group& group) {
  LoadRequest request;
  ranks::broadcast_in(group, request);
  part.load_rows(request, nullptr);
}

/// Does what rank 0 orders until it ends the flow.
void serve_flow(std::unique_ptr<FlowOfRank> own, const RanksPlan& plan, ranks::Group& group,
                const std::function<bool()>& is_interrupted) {
  RowsOfRank rows(group, {});
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
        read(part, group, order);
        break;
      case Task::state:
        part.state(order.number);
        break;
      case Task::weigh_ranks:
        part.work_of_ranks();
        break;
      case Task::deal_anew:
        part.deal_anew();
        break;
      case Task::follow_deal:
        follow_deal(own, plan, group);
        break;
      case Task::recut:
        recut(own, owners_told(part, group), plan, group);
        break;
      case Task::look:
        see(part, group);
        break;
      case Task::gather_rows:
        gather_rows(order.number, rows, part, group);
        break;
      case Task::load_rows:
        load_rows(part, group);
        break;
      case Task::pass_rows:
        rows.pass(order.number, order.rank, order.bytes);
        break;
      case Task::write_shared:
        rows.write_shared(order.number, nullptr);
        break;
      case Task::ground:
        answer_together(group, part.part());
        break;
      case Task::end:
        return;
    }
  }
}

/// Takes part in the next flow, with the share of the case that this rank has read, or with what
/// rank 0 deals out.
void serve_next_flow(ranks::Group& group, std::optional<ranks::Share> read,
                     const std::function<bool()>& is_interrupted) {
  RanksPlan plan;
  ranks::broadcast_in(group, plan);
  if (read) require_scheme_takes(group, read->part);
  ranks::Share share = read ? std::move(*read) : ranks::receive_value<ranks::Share>(group, 0);
  auto part = std::make_unique<FlowOfRank>(std::move(share), plan, group);
  if (part->start().outcome != RankStart::Outcome::good) return;
  serve_flow(std::move(part), plan, group, is_interrupted);
}

/// The same if this rank is one of the first.
void join_next_flow(ranks::Group& group, int members, std::optional<ranks::Share> read,
                    const std::function<bool()>& is_interrupted) {
  const auto group_of_flow = group.first(members);
  if (!group_of_flow) return;
  try {
    serve_next_flow(*group_of_flow, std::move(read), is_interrupted);
  } catch (const ranks::Refusal&) {  // rank 0 tells it
  }
}

}  // namespace

int serve(ranks::Group& group, const std::function<bool()>& is_interrupted) {
  std::optional<ranks::ReadShare> read;
  while (true) {
    Call call{};
    ranks::broadcast_plain(group, call);
    switch (call.kind) {
      case Call::Kind::read:
        read = read_own_share(group);
        break;
      case Call::Kind::ground:
        answer_together(group, read->share.part);
        break;
      case Call::Kind::mesh_rows:
        if (group.rank() == call.number) {
          ranks::send_value(group, std::exchange(read->mesh_rows, {}), 0);
        }
        break;
      case Call::Kind::flow_of_shares: {
        ranks::Share own = std::move(read->share);
        read.reset();  // nothing else of it is needed while there is a flow
        join_next_flow(group, call.number, std::move(own), is_interrupted);
        break;
      }
      case Call::Kind::flow:
        read.reset();
        join_next_flow(group, call.number, {}, is_interrupted);
        break;
      case Call::Kind::end:
        return call.number;
    }
  }
}

void end_service(ranks::Group& group, int number) { call(group, {Call::Kind::end, number}); }

}  // namespace fields
