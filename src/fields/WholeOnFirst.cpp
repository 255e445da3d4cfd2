#include "fields/WholeOnFirst.hpp"

namespace fields {

using cases::at;
using cases::Number;

void WholeOnFirst::set_cells(const std::vector<ranks::Cells>& cells, const cases::Mesh& mesh) {
  cells_ = cells;
  owners_ = ranks::owners_of(cells_);
  boundaries_.assign(at(group_.size()), {});
  for (std::size_t b = 0; b < mesh.boundaries.size(); ++b) {
    const int owner = owner_of(mesh.left[at(mesh.boundaries[b].edge)]);
    boundaries_[at(owner)].push_back(static_cast<Number>(b));
  }
}

std::size_t WholeOnFirst::number_of_boundaries() const {
  std::size_t count = 0;
  for (const std::vector<Number>& of_rank : boundaries_) count += of_rank.size();
  return count;
}

void WholeOnFirst::gather(std::span<const double> own, std::span<double> all) {
  if (!is_first()) return group_.send(std::as_bytes(own), 0);
  for (std::size_t k = 0; k < own.size(); ++k) all[at(cells_.front()[k])] = own[k];
  for (int rank = 1; rank < group_.size(); ++rank) {
    const ranks::Cells& cells = cells_[at(rank)];
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
    for (const Number cell : cells_[at(rank)]) received_.push_back(all[at(cell)]);
    group_.send(std::as_bytes(std::span(received_)), rank);
  }
  for (std::size_t k = 0; k < own.size(); ++k) own[k] = all[at(cells_.front()[k])];
}

}  // namespace fields
