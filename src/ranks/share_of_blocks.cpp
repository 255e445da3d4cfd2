#include "ranks/share_of_blocks.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "physics/stable_step.hpp"
#include "ranks/travellers.hpp"

namespace ranks {

namespace {

using Edges = std::vector<TravellingEdge>;
using Numbers = std::vector<Number>;

bool is_earlier(const TravellingEdge& a, const TravellingEdge& b) { return a.number < b.number; }

cases::CaseScales scales_of_all(Group& group, const cases::Case& block) {
  cases::CaseScales scales = cases::scales_of(block);
  for (const cases::CaseScales& of_rank : gather_all_plain(group, scales)) {
    scales.h0 = physics::larger(scales.h0, of_rank.h0);
    scales.char_length_min = physics::smaller(scales.char_length_min, of_rank.char_length_min);
  }
  return scales;
}

class ShareGatherer {
 public:
  ShareGatherer(Group& group, CaseBlocks blocks, const std::vector<int>& owners)
      : group_(group), blocks_(std::move(blocks)), owners_(owners) {}

  Share gather(int rings) {
    share_.part.scales = scales_of_all(group_, blocks_.contents);
    fetch_own_cells();
    fetch_own_edges();
    find_ghosts(rings);
    fetch_ghosts();
    take_parameters();
    number_cells_and_edges();
    number_nodes();
    share_.halos = halos_of(share_.part, owners_of_ghosts_, rings);
    return std::move(share_);
  }

 private:
  void fetch_own_cells();
  void fetch_own_edges();
  Edges edges_of_block();
  void find_ghosts(int rings);
  /// The edges of foreign cells, of which each has an owner.
  Edges edges_of(const std::map<Number, int>& cells);
  void fetch_ghosts();
  void take_parameters();
  void number_cells_and_edges();
  void number_nodes();

  bool is_here(Number cell) const {
    return std::binary_search(own_.numbers.begin(), own_.numbers.end(), cell) ||
           ghosts_.count(cell) > 0;
  }
  /// Of the cells of an edge, those of others.
  template <class Visit>
  void for_each_foreign_side(const TravellingEdge& edge, const Visit& visit) const {
    if (edge.left_owner != group_.rank()) visit(edge.left, edge.left_owner);
    if (edge.right >= 0 && edge.right_owner != group_.rank()) visit(edge.right, edge.right_owner);
  }

  Group& group_;
  CaseBlocks blocks_;
  const std::vector<int>& owners_;
  TravellingCells own_, around_;  ///< own cells and ghosts, ascending by their numbers
  Edges edges_;                   ///< of own cells and then of ghosts too, ascending likewise
  std::map<Number, int> ghosts_;  ///< their owners
  std::vector<int> owners_of_ghosts_;
  Share share_;
};

void ShareGatherer::fetch_own_cells() {
  const cases::Mesh& mesh = blocks_.contents.mesh;
  TravellingCells block;
  Numbers nodes;
  std::map<int, Numbers> places;
  const Number first = blocks_.cells.begin(group_.rank());
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    block.numbers.push_back(first + cell);
    nodes.clear();
    for (const Number node : mesh.nodes_of(cell)) nodes.push_back(blocks_.node_number[at(node)]);
    block.cells.add_cell(nodes);
    places[owners_[at(cell)]].push_back(cell);
  }
  block.fields = std::move(blocks_.contents.fields);
  blocks_.contents.mesh = {};
  std::map<int, TravellingCells> sent;
  for (const auto& [owner, of_owner] : places) sent[owner] = block.at_places(of_owner);
  block = {};
  for (const auto& [sender, cells] : exchange_values(group_, std::move(sent))) own_.add(cells);
}

void ShareGatherer::fetch_own_edges() {
  std::map<int, Edges> sent;
  for (const TravellingEdge& edge : edges_of_block()) {
    sent[edge.left_owner].push_back(edge);
    if (edge.right >= 0 && edge.right_owner != edge.left_owner) {
      sent[edge.right_owner].push_back(edge);
    }
  }
  for (const auto& [sender, edges] : exchange_values(group_, std::move(sent))) {
    edges_.insert(edges_.end(), edges.begin(), edges.end());
  }
}

/// Asks the blocks of cells who owns those of its edges.
Edges ShareGatherer::edges_of_block() {
  const cases::Mesh& here = blocks_.edges_here;
  Numbers cells = here.left;
  std::copy_if(here.right.begin(), here.right.end(), std::back_inserter(cells),
               [](Number right) { return right >= 0; });
  make_distinct(cells);
  const Number first_cell = blocks_.cells.begin(group_.rank());
  const std::vector<int> owners = ask<int>(
      group_, cells, [&](Number cell) { return blocks_.cells.owner_of(cell); },
      [&](Number cell) { return owners_[at(cell - first_cell)]; });
  const auto owner_of = [&](Number cell) {
    return cell < 0 ? -1 : owners[at(place_among(cells, cell))];
  };
  Edges edges;
  const Number first = blocks_.edges.begin(group_.rank());
  for (Number edge = 0; edge < here.n_edges(); ++edge) {
    const Number left = here.left[at(edge)], right = here.right[at(edge)];
    edges.push_back({first + edge,
                     left,
                     right,
                     here.node1[at(edge)],
                     here.node2[at(edge)],
                     owner_of(left),
                     owner_of(right),
                     -1,
                     {}});
  }
  Number number = blocks_.first_boundary;
  for (const cases::Boundary& boundary : here.boundaries) {
    edges[at(boundary.edge)].boundary = number++;
    edges[at(boundary.edge)].condition = boundary;
  }
  blocks_.edges_here = {};
  return edges;
}

void ShareGatherer::find_ghosts(int rings) {
  std::map<Number, int> ring;
  for (const TravellingEdge& edge : edges_) {
    for_each_foreign_side(edge, [&](Number cell, int owner) { ring[cell] = owner; });
  }
  Edges of_ghosts;
  for (int k = 0; k < rings; ++k) {
    ghosts_.insert(ring.begin(), ring.end());
    const Edges edges = edges_of(ring);
    ring.clear();
    for (const TravellingEdge& edge : edges) {
      for_each_foreign_side(edge, [&](Number cell, int owner) {
        if (ghosts_.count(cell) == 0) ring[cell] = owner;
      });
    }
    of_ghosts.insert(of_ghosts.end(), edges.begin(), edges.end());
  }
  edges_.insert(edges_.end(), of_ghosts.begin(), of_ghosts.end());
  std::sort(edges_.begin(), edges_.end(), is_earlier);
  const auto end = std::unique(edges_.begin(), edges_.end(),
                               [](const auto& a, const auto& b) { return a.number == b.number; });
  edges_.erase(end, edges_.end());
}

Edges ShareGatherer::edges_of(const std::map<Number, int>& cells) {
  std::map<int, Numbers> wanted;
  for (const auto& [cell, owner] : cells) wanted[owner].push_back(cell);
  std::map<int, Edges> answers;
  for (const auto& question : exchange_values(group_, std::move(wanted))) {
    const Numbers& numbers = question.second;
    const auto is_wanted = [&](Number cell) {
      return std::binary_search(numbers.begin(), numbers.end(), cell);
    };
    Edges& answer = answers[question.first];
    std::copy_if(
        edges_.begin(), edges_.end(), std::back_inserter(answer),
        [&](const TravellingEdge& edge) { return is_wanted(edge.left) || is_wanted(edge.right); });
  }
  Edges edges;
  for (const auto& [sender, of_sender] : exchange_values(group_, std::move(answers))) {
    edges.insert(edges.end(), of_sender.begin(), of_sender.end());
  }
  return edges;
}

void ShareGatherer::fetch_ghosts() {
  std::map<int, Numbers> wanted;
  for (const auto& [cell, owner] : ghosts_) wanted[owner].push_back(cell);
  std::map<int, TravellingCells> answers;
  Numbers& border = share_.part.border;
  for (auto& [asking, numbers] : exchange_values(group_, std::move(wanted))) {
    for (Number& number : numbers) number = place_among(own_.numbers, number);
    answers[asking] = own_.at_places(numbers);
    border.insert(border.end(), numbers.begin(), numbers.end());
  }
  make_distinct(border);
  TravellingCells received;
  for (const auto& [owner, cells] : exchange_values(group_, std::move(answers)))
    received.add(cells);
  Numbers order(received.numbers.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](Number a, Number b) { return received.numbers[at(a)] < received.numbers[at(b)]; });
  around_ = received.at_places(order);
}

void ShareGatherer::take_parameters() { share_.part.contents = std::move(blocks_.contents); }

void ShareGatherer::number_cells_and_edges() {
  cases::Part& part = share_.part;
  part.owned = static_cast<Number>(own_.numbers.size());
  for (const auto& [cell, owner] : ghosts_) owners_of_ghosts_.push_back(owner);
  const auto local_number = [&](Number cell) {
    if (cell < 0) return cell;
    const Number own = place_among(own_.numbers, cell);
    if (own < part.owned && own_.numbers[at(own)] == cell) return own;
    return part.owned + place_among(around_.numbers, cell);
  };
  cases::Mesh& mesh = part.contents.mesh;
  for (const TravellingEdge& edge : edges_) {
    if (!is_here(edge.left) || (edge.right >= 0 && !is_here(edge.right))) continue;
    if (edge.boundary >= 0) {
      part.boundary_number.push_back(edge.boundary);
      mesh.boundaries.push_back(edge.condition);
      mesh.boundaries.back().edge = mesh.n_edges();
    }
    part.edge_number.push_back(edge.number);
    mesh.left.push_back(local_number(edge.left));
    mesh.right.push_back(local_number(edge.right));
    mesh.node1.push_back(edge.node1);
    mesh.node2.push_back(edge.node2);
  }
  own_.add(around_);
  part.cell_number = std::move(own_.numbers);
  part.contents.fields = std::move(own_.fields);
  mesh.cell_nodes = std::move(own_.cells.cell_nodes);
  mesh.first_node = std::move(own_.cells.first_node);
}

void ShareGatherer::number_nodes() {
  cases::Mesh& mesh = share_.part.contents.mesh;
  Numbers nodes = mesh.cell_nodes;
  for (const auto* ends : {&mesh.node1, &mesh.node2}) {
    nodes.insert(nodes.end(), ends->begin(), ends->end());
  }
  make_distinct(nodes);
  for (auto* column : {&mesh.cell_nodes, &mesh.node1, &mesh.node2}) {
    for (Number& node : *column) node = place_among(nodes, node);
  }
  Corners corners = corners_of(group_, blocks_, nodes);
  mesh.x = std::move(corners.x);
  mesh.y = std::move(corners.y);
  mesh.z = std::move(corners.z);
  share_.part.node_number = std::move(nodes);
}

}  // namespace

Share share_of_blocks(Group& group, CaseBlocks blocks, const std::vector<int>& owners, int rings) {
  return ShareGatherer(group, std::move(blocks), owners).gather(rings);
}

}  // namespace ranks
