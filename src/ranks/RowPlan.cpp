#include "ranks/RowPlan.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "ranks/values.hpp"

namespace ranks {

using cases::Number;
using engine::at;

namespace {

template <class Value>
void append(utils::Bytes& bytes, std::span<const Value> values) {
  const auto added = std::as_bytes(values);
  bytes.insert(bytes.end(), added.begin(), added.end());
}

template <class Value>
std::vector<Value> values_of(const utils::Bytes& bytes) {
  std::vector<Value> values(bytes.size() / sizeof(Value));
  if (!values.empty()) std::memcpy(values.data(), bytes.data(), bytes.size());
  return values;
}

}  // namespace

RowPlan::RowPlan(std::span<const Number> own, Group& group) : cells_(own.size()) {
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
    append(sent.emplace_back(Message{rank, {}}).bytes, std::span(next, end));
    next = end;
  }
  for (const Message& message : group.send_to_some(std::move(sent))) {
    Rows& from = from_.emplace_back(Rows{message.rank, values_of<Number>(message.bytes)});
    for (Number& row : from.rows) row -= rows_.first;
  }
}

void RowPlan::send(std::span<const double> columns_of_cells, std::span<double> columns_of_rows,
                   Group& group) const {
  const std::size_t columns = cells_ > 0 ? columns_of_cells.size() / cells_ : 0;
  std::vector<Message> sent;
  for (const Run& run : to_) {
    utils::Bytes& bytes = sent.emplace_back(Message{run.rank, {}}).bytes;
    for (std::size_t column = 0; column < columns; ++column) {
      append(bytes, columns_of_cells.subspan(column * cells_ + run.first, run.count));
    }
  }
  const std::vector<Message> received = group.send_to_some(std::move(sent));
  for (std::size_t k = 0; k < received.size(); ++k) {
    const std::vector<double> values = values_of<double>(received[k].bytes);
    const std::vector<Number>& rows = from_[k].rows;
    for (std::size_t i = 0; i < values.size(); ++i) {
      columns_of_rows[i / rows.size() * this->rows() + at(rows[i % rows.size()])] = values[i];
    }
  }
}

void RowPlan::send_back(std::span<const double> columns_of_rows, std::span<double> columns_of_cells,
                        Group& group) const {
  const std::size_t columns = rows() > 0 ? columns_of_rows.size() / rows() : 0;
  std::vector<Message> sent;
  for (const Rows& from : from_) {
    std::vector<double> values;
    for (std::size_t column = 0; column < columns; ++column) {
      for (const Number row : from.rows) {
        values.push_back(columns_of_rows[column * rows() + at(row)]);
      }
    }
    append(sent.emplace_back(Message{from.rank, {}}).bytes, std::span<const double>(values));
  }
  const std::vector<Message> received = group.send_to_some(std::move(sent));
  for (std::size_t k = 0; k < received.size(); ++k) {
    const std::vector<double> values = values_of<double>(received[k].bytes);
    const Run& run = to_[k];
    for (std::size_t i = 0; i < values.size(); ++i) {
      columns_of_cells[i / run.count * cells_ + run.first + i % run.count] = values[i];
    }
  }
}

}  // namespace ranks
