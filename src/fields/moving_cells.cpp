#include "fields/moving_cells.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "ranks/unite_parts.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

using Numbers = std::vector<Number>;

MovingCells part_of(const MovingCells& all, const Numbers& entries) {
  MovingCells part;
  part.numbers = cases::entries_of(all.numbers, entries);
  part.state = fields::part_of(all.state, entries);
  if (all.notes) part.notes = fields::part_of(*all.notes, entries);
  part.infiltrated = cases::entries_of(all.infiltrated, entries);
  part.awake = cases::entries_of(all.awake, entries);
  return part;
}

/// Makes one of the parts that came, of which each holds the rest besides columns.
MovingCells united(const std::vector<MovingCells>& parts) {
  MovingCells all;
  for (const MovingCells& part : parts) {
    all.numbers.insert(all.numbers.end(), part.numbers.begin(), part.numbers.end());
  }
  std::sort(all.numbers.begin(), all.numbers.end());
  const std::size_t cells = all.numbers.size();
  all.awake.resize(cells);
  for (const MovingCells& part : parts) {
    const Numbers entries = ranks::places_among(all.numbers, part.numbers);
    take_the_rest(all.state, part.state);
    put_part(part.state, entries, cells, all.state);
    if (!part.infiltrated.empty()) all.infiltrated.resize(cells);
    place(part.infiltrated, entries, all.infiltrated);
    place(part.awake, entries, all.awake);
    if (!part.notes) continue;
    if (!all.notes) all.notes.emplace();
    take_the_rest(*all.notes, *part.notes);
    put_part(*part.notes, entries, cells, *all.notes);
  }
  return all;
}

}  // namespace

MovingCells moved(const MovingCells& own, const std::vector<int>& new_ranks, ranks::Group& group) {
  std::map<int, Numbers> entries_for;
  for (std::size_t k = 0; k < own.numbers.size(); ++k) {
    entries_for[new_ranks[k]].push_back(static_cast<Number>(k));
  }
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
