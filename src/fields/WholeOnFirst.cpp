#include "fields/WholeOnFirst.hpp"

namespace fields {

using cases::at;
using cases::Number;

void WholeOnFirst::gather_numbers(const Entries& own) {
  if (!is_first()) return ranks::send_value(group_, own, 0);
  std::size_t cells = 0;
  for (int rank = 0; rank < group_.size(); ++rank) {
    of_ranks_.push_back(rank == 0 ? own : ranks::receive_value<Entries>(group_, rank));
    cells += of_ranks_.back().cells.size();
  }
  owners_.resize(cells);
  for (int rank = 0; rank < group_.size(); ++rank) {
    for (const Number cell : of_ranks_[at(rank)].cells) owners_[at(cell)] = rank;
  }
}

std::size_t WholeOnFirst::number_of_boundaries() const {
  std::size_t count = 0;
  for (const Entries& of_rank : of_ranks_) count += of_rank.boundaries.size();
  return count;
}

void WholeOnFirst::gather(std::span<const double> own, std::span<double> all) {
  if (!is_first()) return group_.send(std::as_bytes(own), 0);
  for (std::size_t k = 0; k < own.size(); ++k) all[at(of_ranks_.front().cells[k])] = own[k];
  for (int rank = 1; rank < group_.size(); ++rank) {
    const std::vector<Number>& cells = of_ranks_[at(rank)].cells;
    received_.resize(cells.size());
    group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    place(received_, cells, all);
  }
}

void WholeOnFirst::gather_some(std::span<const Number> cells, std::span<const double> own,
                               std::span<double> values) {
  if (!is_first()) {
    if (!own.empty()) group_.send(std::as_bytes(own), 0);
    return;
  }
  for (int rank = 0; rank < group_.size(); ++rank) {
    std::vector<std::size_t> of_rank;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (owner_of(cells[i]) == rank) of_rank.push_back(i);
    }
    if (of_rank.empty()) continue;
    received_.assign(own.begin(), own.end());
    received_.resize(of_rank.size());
    if (rank > 0) group_.receive(std::as_writable_bytes(std::span(received_)), rank);
    for (std::size_t k = 0; k < of_rank.size(); ++k) values[of_rank[k]] = received_[k];
  }
}

void WholeOnFirst::hand_out(std::span<const double> all, std::span<double> own) {
  if (!is_first()) return group_.receive(std::as_writable_bytes(own), 0);
  for (int rank = 1; rank < group_.size(); ++rank) {
    received_.clear();
    for (const Number cell : of_ranks_[at(rank)].cells) received_.push_back(all[at(cell)]);
    group_.send(std::as_bytes(std::span(received_)), rank);
  }
  for (std::size_t k = 0; k < own.size(); ++k) own[k] = all[at(of_ranks_.front().cells[k])];
}

}  // namespace fields
