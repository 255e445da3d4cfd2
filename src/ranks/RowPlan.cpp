#include "ranks/RowPlan.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "ranks/values.hpp"

namespace ranks {

using cases::Number;
using engine::at;

RowPlan::RowPlan(std::span<const Number> own, Group& group) {
  const std::vector<std::size_t> counts = gather_all_plain(group, own.size());
  rows_of_all_ = static_cast<Number>(std::accumulate(counts.begin(), counts.end(), 0UL));
  rows_ = rows_of(group.rank(), group.size(), rows_of_all_);
  std::vector<Message> sent;
  auto next = own.begin();
  for (int rank = 0; rank < group.size(); ++rank) {
    const RowBlock rows = rows_of(rank, group.size(), rows_of_all_);
    const auto end = std::lower_bound(next, own.end(), rows.first + rows.count);
    if (next == end) continue;
    to_.push_back(
        {rank, static_cast<std::size_t>(next - own.begin()), static_cast<std::size_t>(end - next)});
    append_values<Number>(sent.emplace_back(Message{rank, {}}).bytes, std::span(next, end));
    next = end;
  }
  for (const Message& message : group.send_to_some(std::move(sent))) {
    Rows& from = from_.emplace_back(Rows{message.rank, values_of<Number>(message.bytes)});
    for (Number& row : from.rows) row -= rows_.first;
  }
}

void RowPlan::send(std::span<const double> of_cells, std::span<double> of_rows,
                   Group& group) const {
  std::vector<Message> sent;
  for (const Run& run : to_) {
    append_values(sent.emplace_back(Message{run.rank, {}}).bytes,
                  of_cells.subspan(run.first, run.count));
  }
  const std::vector<Message> received = group.send_to_some(std::move(sent));
  for (std::size_t k = 0; k < received.size(); ++k) {
    const std::byte* next = received[k].bytes.data();
    for (const Number row : from_[k].rows) {
      std::memcpy(&of_rows[at(row)], next, sizeof(double));
      next += sizeof(double);
    }
  }
}

void RowPlan::send_back(std::span<const double> of_rows, std::span<double> of_cells,
                        Group& group) const {
  std::vector<Message> sent;
  for (const Rows& from : from_) {
    std::vector<double> values;
    values.reserve(from.rows.size());
    for (const Number row : from.rows) values.push_back(of_rows[at(row)]);
    append_values<double>(sent.emplace_back(Message{from.rank, {}}).bytes, values);
  }
  const std::vector<Message> received = group.send_to_some(std::move(sent));
  for (std::size_t k = 0; k < received.size(); ++k) {
    const utils::Bytes& bytes = received[k].bytes;
    std::memcpy(of_cells.subspan(to_[k].first).data(), bytes.data(), bytes.size());
  }
}

}  // namespace ranks
