#include "ranks/unite_parts.hpp"

#include <algorithm>
#include <iterator>

#include "engine/aligned_vector.hpp"

namespace ranks {

using cases::Number;
using cases::Part;
using engine::at;

namespace {

using Numbers = std::vector<Number>;

/// The distinct numbers that some parts have of something, ascending. The first part is by far the
/// largest, and its numbers are sorted by themselves.
Numbers all_numbers(const std::vector<const Part*>& parts, Numbers Part::*numbers) {
  Numbers first, rest, all;
  for (const Part* part : parts) {
    Numbers& list = part == parts.front() ? first : rest;
    list.insert(list.end(), (part->*numbers).begin(), (part->*numbers).end());
  }
  for (Numbers* list : {&first, &rest}) {
    if (!std::is_sorted(list->begin(), list->end())) std::sort(list->begin(), list->end());
    list->erase(std::unique(list->begin(), list->end()), list->end());
  }
  std::set_union(first.begin(), first.end(), rest.begin(), rest.end(), std::back_inserter(all));
  return all;
}

/// Puts the entries of a part where they stand among so many of all.
template <class Value>
void place(const std::vector<Value>& part, const Numbers& places, std::size_t count,
           std::vector<Value>& all) {
  if (part.empty()) return;
  all.resize(count);
  for (std::size_t k = 0; k < part.size(); ++k) all[at(places[k])] = part[k];
}

/// Entries that are numbers themselves, by new ones; -1 stays as it is.
Numbers renumbered(const Numbers& column, const Numbers& new_numbers) {
  Numbers renumbered;
  renumbered.reserve(column.size());
  for (const Number number : column) {
    renumbered.push_back(number < 0 ? number : new_numbers[at(number)]);
  }
  return renumbered;
}

class PartsInOne {
 public:
  explicit PartsInOne(const std::vector<const Part*>& parts) : parts_(parts) {
    all_.cell_number = all_numbers(parts, &Part::cell_number);
    all_.edge_number = all_numbers(parts, &Part::edge_number);
    all_.node_number = all_numbers(parts, &Part::node_number);
    all_.boundary_number = all_numbers(parts, &Part::boundary_number);
    all_.contents.mesh.boundaries.resize(all_.boundary_number.size());
    source_of_cell_.resize(all_.cell_number.size());
  }

  Part take() {
    for (std::size_t k = 0; k < parts_.size(); ++k) {
      add(*parts_[k], static_cast<Number>(k));
    }
    add_cells();
    return std::move(all_);
  }

 private:
  struct Source {
    Number part, cell;
  };

  void add(const Part& part, Number number);
  void add_cells();

  const std::vector<const Part*>& parts_;
  std::vector<Numbers> nodes_;  ///< of every part, where they stand among all
  std::vector<Source> source_of_cell_;
  Part all_;
};

void PartsInOne::add(const Part& part, Number number) {
  const cases::Mesh& from = part.contents.mesh;
  cases::Mesh& to = all_.contents.mesh;
  const Numbers cells = places_among(all_.cell_number, part.cell_number);
  const Numbers edges = places_among(all_.edge_number, part.edge_number);
  const Numbers boundaries = places_among(all_.boundary_number, part.boundary_number);
  const Numbers& nodes = nodes_.emplace_back(places_among(all_.node_number, part.node_number));
  for (std::size_t k = 0; k < cells.size(); ++k) {
    source_of_cell_[at(cells[k])] = {number, static_cast<Number>(k)};
  }
  for (const auto column : {&cases::Mesh::x, &cases::Mesh::y, &cases::Mesh::z}) {
    place(from.*column, nodes, all_.node_number.size(), to.*column);
  }
  for (const auto column : {&cases::Mesh::left, &cases::Mesh::right}) {
    place(renumbered(from.*column, cells), edges, all_.edge_number.size(), to.*column);
  }
  for (const auto column : {&cases::Mesh::node1, &cases::Mesh::node2}) {
    place(renumbered(from.*column, nodes), edges, all_.edge_number.size(), to.*column);
  }
  for (std::size_t b = 0; b < boundaries.size(); ++b) {
    cases::Boundary& boundary = to.boundaries[at(boundaries[b])];
    boundary = from.boundaries[b];
    boundary.edge = edges[at(boundary.edge)];
  }
  cases::CellFields::visit_parts(part.contents.fields, [&](const auto&... of_part) {
    cases::CellFields::visit_parts(all_.contents.fields, [&](auto&... of_all) {
      (place(of_part, cells, all_.cell_number.size(), of_all), ...);
    });
  });
}

void PartsInOne::add_cells() {
  all_.contents.mesh.cell_nodes.reserve(3 * source_of_cell_.size());
  Numbers corners;
  for (const Source& source : source_of_cell_) {
    corners.clear();
    for (const Number node : parts_[at(source.part)]->contents.mesh.nodes_of(source.cell)) {
      corners.push_back(nodes_[at(source.part)][at(node)]);
    }
    all_.contents.mesh.add_cell(corners);
  }
}

}  // namespace

std::vector<Number> places_among(const std::vector<Number>& distinct,
                                 const std::vector<Number>& numbers) {
  std::vector<Number> places;
  places.reserve(numbers.size());
  std::size_t place = 0;
  for (const Number number : numbers) {
    if (place == distinct.size() || distinct[place] > number) {
      place = static_cast<std::size_t>(std::lower_bound(distinct.begin(), distinct.end(), number) -
                                       distinct.begin());
    }
    while (distinct[place] < number) ++place;
    places.push_back(static_cast<Number>(place));
  }
  return places;
}

Part united(const std::vector<const Part*>& parts) { return PartsInOne(parts).take(); }

}  // namespace ranks
