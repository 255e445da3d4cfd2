#include "fields/moving_cells.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "ranks/unite_parts.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

/// Calls add(rank, k) for the k-th of a list of ranks.
template <class Add>
void for_each_rank(const std::vector<int>& ranks, const Add& add) {
  for (std::size_t k = 0; k < ranks.size(); ++k) add(ranks[k], static_cast<Number>(k));
}

MovingCells part_of(const MovingCells& all, const Entries& entries) {
  MovingCells part;
  part.numbers.cells = cases::entries_of(all.numbers.cells, entries.cells);
  part.numbers.boundaries = cases::entries_of(all.numbers.boundaries, entries.boundaries);
  part.state = fields::part_of(all.state, entries);
  if (all.notes) part.notes = fields::part_of(*all.notes, entries);
  part.infiltrated = cases::entries_of(all.infiltrated, entries.cells);
  part.awake = cases::entries_of(all.awake, entries.cells);
  return part;
}

void append(std::vector<Number>& all, const std::vector<Number>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

/// Makes one of the parts that came, of which each holds the rest besides columns.
MovingCells united(const std::vector<MovingCells>& parts) {
  MovingCells all;
  for (const MovingCells& part : parts) {
    append(all.numbers.cells, part.numbers.cells);
    append(all.numbers.boundaries, part.numbers.boundaries);
  }
  std::sort(all.numbers.cells.begin(), all.numbers.cells.end());
  std::sort(all.numbers.boundaries.begin(), all.numbers.boundaries.end());
  const std::size_t cells = all.numbers.cells.size(), boundaries = all.numbers.boundaries.size();
  all.awake.resize(cells);
  for (const MovingCells& part : parts) {
    const Entries entries = {ranks::places_among(all.numbers.cells, part.numbers.cells),
                             ranks::places_among(all.numbers.boundaries, part.numbers.boundaries)};
    take_the_rest(all.state, part.state);
    put_part(part.state, entries, cells, boundaries, all.state);
    if (!part.infiltrated.empty()) all.infiltrated.resize(cells);
    place(part.infiltrated, entries.cells, all.infiltrated);
    place(part.awake, entries.cells, all.awake);
    if (!part.notes) continue;
    if (!all.notes) all.notes.emplace();
    take_the_rest(*all.notes, *part.notes);
    put_part(*part.notes, entries, cells, boundaries, *all.notes);
  }
  return all;
}

}  // namespace

MovingCells moved(const MovingCells& own, const NewRanks& new_ranks, ranks::Group& group) {
  std::map<int, Entries> entries_for;
  for_each_rank(new_ranks.of_cells,
                [&](int rank, Number k) { entries_for[rank].cells.push_back(k); });
  for_each_rank(new_ranks.of_boundaries,
                [&](int rank, Number k) { entries_for[rank].boundaries.push_back(k); });
  std::vector<ranks::Message> sent;
  std::vector<MovingCells> parts;
  for (const auto& [rank, entries] : entries_for) {
    MovingCells part = part_of(own, entries);
    if (rank == group.rank()) {
      parts.push_back(std::move(part));
    } else {
      utils::put_into(sent.emplace_back(ranks::Message{rank, {}}).bytes, part);
    }
  }
  for (const ranks::Message& message : group.send_to_some(std::move(sent))) {
    utils::take_out_of(message.bytes, parts.emplace_back());
  }
  return united(parts);
}

}  // namespace fields
