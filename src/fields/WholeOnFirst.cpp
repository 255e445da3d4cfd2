#include "fields/WholeOnFirst.hpp"

#include <map>

#include "ranks/Blocks.hpp"

namespace fields {

using cases::at;
using cases::Number;

void WholeOnFirst::learn() {
  if (std::exchange(is_learned_, true)) return;
  if (!is_first()) return ranks::send_value(group_, own_numbers_(), 0);
  of_ranks_.push_back(own_numbers_());
  for (int rank = 1; rank < group_.size(); ++rank) {
    of_ranks_.push_back(ranks::receive_value<Entries>(group_, rank));
  }
}

std::size_t WholeOnFirst::number_of(Over over) const {
  std::size_t count = 0;
  for (const Entries& numbers : of_ranks_) count += numbers[over].size();
  return count;
}

void WholeOnFirst::gather(std::span<const double> own, std::span<double> all) {
  learn();
  if (!is_first()) return group_.send(std::as_bytes(own), 0);
  for (std::size_t k = 0; k < own.size(); ++k) all[at(of_ranks_.front().cells[k])] = own[k];
  for (int rank = 1; rank < group_.size(); ++rank) {
    const std::vector<Number>& cells = of_ranks_[at(rank)].cells;
    received_.resize(cells.size());
    group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    place(received_, cells, all);
  }
}

void WholeOnFirst::gather_some(const std::vector<Number>& places, const std::vector<double>& own,
                               std::span<double> values) {
  using Some = std::pair<std::vector<Number>, std::vector<double>>;
  std::map<int, Some> sent;
  if (!is_first() && !places.empty()) sent[0] = {places, own};
  if (is_first()) place(own, places, values);
  for (const auto& [rank, some] : ranks::exchange_values(group_, std::move(sent))) {
    place(some.second, some.first, values);
  }
}

void WholeOnFirst::hand_out(std::span<const double> all, std::span<double> own) {
  learn();
  if (!is_first()) return group_.receive(std::as_writable_bytes(own), 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    received_.clear();
    for (const Number cell : of_ranks_[at(rank)].cells) received_.push_back(all[at(cell)]);
    group_.send(std::as_bytes(std::span(received_)), rank);
  }
  for (std::size_t k = 0; k < own.size(); ++k) own[k] = all[at(of_ranks_.front().cells[k])];
}

}  // namespace fields
