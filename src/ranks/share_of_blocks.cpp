#include "ranks/share_of_blocks.hpp"

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>
#include <utility>

#include "physics/stable_step.hpp"
#include "ranks/NumberSet.hpp"
#include "ranks/SendPlan.hpp"
#include "ranks/travellers.hpp"

namespace ranks {

namespace {

using Numbers = std::vector<Number>;
using Edges = std::vector<TravellingEdge>;

/// The boundary condition on an edge, with its number and that of the edge in the whole case.
struct NumberedBoundary {
  Number number;
  cases::Boundary condition;
};

/// Columns of the edges of own cells, ascending, by numbers in the whole case.
struct OwnEdges {
  Numbers number, left, right, node1, node2;
  std::vector<int> left_owner, right_owner;  ///< ranks that own the cells; -1 without a right cell
  std::vector<NumberedBoundary> boundaries;  ///< ascending

  std::size_t size() const { return number.size(); }
};

Numbers numbers_from(Number first, Number count) {
  Numbers numbers(at(count));
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

/// Cells with so many nodes each.
cases::Mesh cells_of(const Numbers& nodes_of_each, Numbers nodes) {
  cases::Mesh cells;
  cells.cell_nodes = std::move(nodes);
  constexpr Number triangle = 3;
  const auto is_triangle = [](Number count) { return count == triangle; };
  if (std::all_of(nodes_of_each.begin(), nodes_of_each.end(), is_triangle)) return cells;
  cells.first_node = {0};
  for (const Number count : nodes_of_each) {
    cells.first_node.push_back(cells.first_node.back() + count);
  }
  return cells;
}

/// Puts each of some values before the entry at a place of a column; places ascend.
void insert_before(const std::vector<std::size_t>& places, const Numbers& values, Numbers& column) {
  std::size_t end = column.size();
  column.resize(end + values.size());
  const auto begin = column.begin();
  for (std::size_t k = values.size(); k > 0; --k) {
    const std::size_t place = places[k - 1];
    std::move_backward(begin + static_cast<std::ptrdiff_t>(place),
                       begin + static_cast<std::ptrdiff_t>(end),
                       begin + static_cast<std::ptrdiff_t>(end + k));
    column[place + k - 1] = values[k - 1];
    end = place;
  }
}

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
      : group_(group), rank_(group.rank()), blocks_(std::move(blocks)), owners_(owners) {}

  Share gather(int rings) {
    share_.part.scales = scales_of_all(group_, blocks_.contents);
    fetch_own_cells();
    fetch_own_edges();
    find_ghosts(rings);
    fetch_ghosts();
    take_parameters();
    number_cells();
    number_edges();
    add_edges_between_ghosts();
    take_boundaries();
    number_nodes();
    share_.halos = halos_of(share_.part, owners_of_ghosts_, rings);
    return std::move(share_);
  }

 private:
  void fetch_own_cells();
  void fetch_own_edges();
  void find_ghosts(int rings);
  /// The edges of foreign cells, of which each has an owner.
  Edges edges_of(const std::map<Number, int>& cells);
  /// Of the own edges, those of some own cells.
  std::vector<std::size_t> edges_at(const std::vector<std::pair<int, Numbers>>& cells) const;
  TravellingEdge edge_at(std::size_t k) const;
  void fetch_ghosts();
  void take_parameters();
  void number_cells();
  void number_edges();
  void add_edges_between_ghosts();
  void take_boundaries();
  void number_nodes();

  bool is_own(int owner) const { return owner == rank_; }
  /// In the part, of a cell that is there.
  Number local_number(Number cell, int owner) const {
    if (cell < 0) return cell;
    if (is_own(owner)) return own_cells_.place_of(cell);
    return static_cast<Number>(own_cells_.size()) + place_among(around_.numbers, cell);
  }
  /// Of the cells of an edge, those of others.
  template <class Visit>
  void for_each_foreign_side(const TravellingEdge& edge, const Visit& visit) const {
    if (!is_own(edge.left_owner)) visit(edge.left, edge.left_owner);
    if (edge.right >= 0 && !is_own(edge.right_owner)) visit(edge.right, edge.right_owner);
  }

  Group& group_;
  const int rank_;
  CaseBlocks blocks_;
  const std::vector<int>& owners_;
  TravellingCells own_, around_;  ///< own cells and ghosts, ascending by their numbers
  NumberSet own_cells_;           ///< the same own cells
  OwnEdges edges_;
  Edges edges_between_ghosts_;    ///< ascending by their numbers
  std::map<Number, int> ghosts_;  ///< their owners
  std::vector<int> owners_of_ghosts_;
  Share share_;
};

void ShareGatherer::fetch_own_cells() {
  cases::Mesh& mesh = blocks_.contents.mesh;
  for (Number& node : mesh.cell_nodes) node = blocks_.node_number[at(node)];
  blocks_.node_number = {};
  mesh.x = mesh.y = mesh.z = {};
  const SendPlan to_owners(group_, mesh.n_cells(),
                           [&](Number cell, const auto& visit) { visit(owners_[at(cell)]); });
  own_.numbers = to_owners.send(numbers_from(blocks_.cells.begin(rank_), mesh.n_cells()));
  own_cells_ = NumberSet({own_.numbers});
  Numbers nodes_of_each(at(mesh.n_cells()));
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    nodes_of_each[at(cell)] = static_cast<Number>(mesh.nodes_of(cell).size());
  }
  nodes_of_each = to_owners.send(nodes_of_each);
  own_.cells =
      cells_of(nodes_of_each,
               to_owners.send_lists<Number>([&](Number cell) { return mesh.nodes_of(cell); }));
  mesh = {};
  cases::CellFields::visit_parts(blocks_.contents.fields, [&](auto&... of_block) {
    cases::CellFields::visit_parts(own_.fields, [&](auto&... own) {
      ((own = to_owners.send(std::exchange(of_block, {}))), ...);
    });
  });
}

/// Asks the blocks of cells who owns those of the edges here.
void ShareGatherer::fetch_own_edges() {
  cases::Mesh& here = blocks_.edges_here;
  std::vector<int> left_owner, right_owner;
  {
    const NumberSet cells({here.left, here.right});
    const auto owners = SendPlan::of_wanted(group_, cells.numbers(), blocks_.cells).send(owners_);
    const auto owner_of = [&](Number cell) {
      return cell < 0 ? -1 : owners[at(cells.place_of(cell))];
    };
    left_owner.reserve(here.left.size());
    right_owner.reserve(here.right.size());
    for (const Number cell : here.left) left_owner.push_back(owner_of(cell));
    for (const Number cell : here.right) right_owner.push_back(owner_of(cell));
  }
  const auto for_each_owner = [&](Number edge, const auto& visit) {
    const int left = left_owner[at(edge)], right = right_owner[at(edge)];
    visit(left);
    if (right >= 0 && right != left) visit(right);
  };
  const Number first = blocks_.edges.begin(rank_);
  std::vector<NumberedBoundary> boundaries;
  for (const cases::Boundary& condition : here.boundaries) {
    const auto before = static_cast<Number>(boundaries.size());
    boundaries.push_back({blocks_.first_boundary + before, condition});
    boundaries.back().condition.edge += first;
  }
  const SendPlan with_edges(
      group_, static_cast<Number>(boundaries.size()),
      [&](Number k, const auto& visit) { for_each_owner(here.boundaries[at(k)].edge, visit); });
  edges_.boundaries = with_edges.send(boundaries);
  const SendPlan to_owners(group_, here.n_edges(), for_each_owner);
  edges_.number = to_owners.send(numbers_from(first, here.n_edges()));
  edges_.left = to_owners.send(std::exchange(here.left, {}));
  edges_.right = to_owners.send(std::exchange(here.right, {}));
  edges_.node1 = to_owners.send(std::exchange(here.node1, {}));
  edges_.node2 = to_owners.send(std::exchange(here.node2, {}));
  edges_.left_owner = to_owners.send(std::exchange(left_owner, {}));
  edges_.right_owner = to_owners.send(std::exchange(right_owner, {}));
  here = {};
}

TravellingEdge ShareGatherer::edge_at(std::size_t k) const {
  TravellingEdge edge{edges_.number[k],
                      edges_.left[k],
                      edges_.right[k],
                      edges_.node1[k],
                      edges_.node2[k],
                      edges_.left_owner[k],
                      edges_.right_owner[k],
                      -1,
                      {}};
  const auto found = std::lower_bound(
      edges_.boundaries.begin(), edges_.boundaries.end(), edge.number,
      [](const NumberedBoundary& a, Number number) { return a.condition.edge < number; });
  if (found != edges_.boundaries.end() && found->condition.edge == edge.number) {
    edge.boundary = found->number;
    edge.condition = found->condition;
  }
  return edge;
}

void ShareGatherer::find_ghosts(int rings) {
  std::map<Number, int> ring;
  for (std::size_t k = 0; k < edges_.size(); ++k) {
    const int left = edges_.left_owner[k], right = edges_.right_owner[k];
    if (!is_own(left)) ring[edges_.left[k]] = left;
    if (right >= 0 && !is_own(right)) ring[edges_.right[k]] = right;
  }
  for (int k = 0; k < rings; ++k) {
    ghosts_.insert(ring.begin(), ring.end());
    const Edges edges = edges_of(ring);
    ring.clear();
    for (const TravellingEdge& edge : edges) {
      for_each_foreign_side(edge, [&](Number cell, int owner) {
        if (ghosts_.count(cell) == 0) ring[cell] = owner;
      });
      if (!is_own(edge.left_owner) && !is_own(edge.right_owner)) {
        edges_between_ghosts_.push_back(edge);
      }
    }
  }
  // Those that lead out of the last ring are not there.
  Edges& edges = edges_between_ghosts_;
  const auto leads_out = [&](const TravellingEdge& edge) {
    return ghosts_.count(edge.left) == 0 || (edge.right >= 0 && ghosts_.count(edge.right) == 0);
  };
  edges.erase(std::remove_if(edges.begin(), edges.end(), leads_out), edges.end());
  std::sort(edges.begin(), edges.end(),
            [](const auto& a, const auto& b) { return a.number < b.number; });
  edges.erase(std::unique(edges.begin(), edges.end(),
                          [](const auto& a, const auto& b) { return a.number == b.number; }),
              edges.end());
}

Edges ShareGatherer::edges_of(const std::map<Number, int>& cells) {
  std::map<int, Numbers> wanted;
  for (const auto& [cell, owner] : cells) wanted[owner].push_back(cell);
  const auto questions = exchange_values(group_, std::move(wanted));
  const std::vector<std::size_t> candidates = edges_at(questions);
  std::map<int, Edges> answers;
  for (const auto& [asking, numbers] : questions) {
    const auto is_wanted = [&of_asking = numbers](Number cell) {
      return std::binary_search(of_asking.begin(), of_asking.end(), cell);
    };
    Edges& answer = answers[asking];
    for (const std::size_t k : candidates) {
      if (is_wanted(edges_.left[k]) || is_wanted(edges_.right[k])) answer.push_back(edge_at(k));
    }
  }
  Edges edges;
  for (const auto& [sender, of_sender] : exchange_values(group_, std::move(answers))) {
    edges.insert(edges.end(), of_sender.begin(), of_sender.end());
  }
  return edges;
}

std::vector<std::size_t> ShareGatherer::edges_at(
    const std::vector<std::pair<int, Numbers>>& cells) const {
  std::vector<std::uint8_t> is_wanted(own_cells_.size(), 0);
  for (const auto& [asking, numbers] : cells) {
    for (const Number cell : numbers) is_wanted[at(own_cells_.place_of(cell))] = 1;
  }
  const auto is_at = [&](Number cell, int owner) {
    return is_own(owner) && is_wanted[at(own_cells_.place_of(cell))] != 0;
  };
  std::vector<std::size_t> found;
  for (std::size_t k = 0; k < edges_.size(); ++k) {
    if (is_at(edges_.left[k], edges_.left_owner[k]) ||
        is_at(edges_.right[k], edges_.right_owner[k])) {
      found.push_back(k);
    }
  }
  return found;
}

void ShareGatherer::fetch_ghosts() {
  std::map<int, Numbers> wanted;
  for (const auto& [cell, owner] : ghosts_) wanted[owner].push_back(cell);
  std::map<int, TravellingCells> answers;
  Numbers& border = share_.part.border;
  for (auto& [asking, numbers] : exchange_values(group_, std::move(wanted))) {
    for (Number& number : numbers) number = own_cells_.place_of(number);
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

void ShareGatherer::number_cells() {
  cases::Part& part = share_.part;
  cases::Mesh& mesh = part.contents.mesh;
  part.owned = static_cast<Number>(own_.numbers.size());
  for (const auto& [cell, owner] : ghosts_) owners_of_ghosts_.push_back(owner);
  own_.add(around_);
  part.cell_number = std::move(own_.numbers);
  part.contents.fields = std::move(own_.fields);
  mesh.cell_nodes = std::move(own_.cells.cell_nodes);
  mesh.first_node = std::move(own_.cells.first_node);
}

void ShareGatherer::number_edges() {
  cases::Mesh& mesh = share_.part.contents.mesh;
  share_.part.edge_number = std::move(edges_.number);
  mesh.left = std::move(edges_.left);
  mesh.right = std::move(edges_.right);
  mesh.node1 = std::move(edges_.node1);
  mesh.node2 = std::move(edges_.node2);
  for (std::size_t k = 0; k < mesh.left.size(); ++k) {
    mesh.left[k] = local_number(mesh.left[k], edges_.left_owner[k]);
    mesh.right[k] = local_number(mesh.right[k], edges_.right_owner[k]);
  }
  edges_.left_owner = edges_.right_owner = {};
}

void ShareGatherer::add_edges_between_ghosts() {
  cases::Part& part = share_.part;
  cases::Mesh& mesh = part.contents.mesh;
  std::vector<std::size_t> places;
  OwnEdges added;
  for (const TravellingEdge& edge : edges_between_ghosts_) {
    places.push_back(at(place_among(part.edge_number, edge.number)));
    added.number.push_back(edge.number);
    added.left.push_back(local_number(edge.left, edge.left_owner));
    added.right.push_back(local_number(edge.right, edge.right_owner));
    added.node1.push_back(edge.node1);
    added.node2.push_back(edge.node2);
    if (edge.boundary >= 0) edges_.boundaries.push_back({edge.boundary, edge.condition});
  }
  insert_before(places, added.number, part.edge_number);
  insert_before(places, added.left, mesh.left);
  insert_before(places, added.right, mesh.right);
  insert_before(places, added.node1, mesh.node1);
  insert_before(places, added.node2, mesh.node2);
}

void ShareGatherer::take_boundaries() {
  cases::Part& part = share_.part;
  std::sort(edges_.boundaries.begin(), edges_.boundaries.end(),
            [](const auto& a, const auto& b) { return a.number < b.number; });
  for (const NumberedBoundary& boundary : edges_.boundaries) {
    part.boundary_number.push_back(boundary.number);
    cases::Boundary& condition = part.contents.mesh.boundaries.emplace_back(boundary.condition);
    condition.edge = place_among(part.edge_number, condition.edge);
  }
  edges_.boundaries = {};
}

void ShareGatherer::number_nodes() {
  cases::Mesh& mesh = share_.part.contents.mesh;
  const NumberSet nodes({mesh.cell_nodes, mesh.node1, mesh.node2});
  for (auto* column : {&mesh.cell_nodes, &mesh.node1, &mesh.node2}) {
    for (Number& node : *column) node = nodes.place_of(node);
  }
  share_.part.node_number = nodes.numbers();
  Corners corners = corners_of(group_, blocks_, share_.part.node_number);
  mesh.x = std::move(corners.x);
  mesh.y = std::move(corners.y);
  mesh.z = std::move(corners.z);
}

}  // namespace

Share share_of_blocks(Group& group, CaseBlocks blocks, const std::vector<int>& owners, int rings) {
  return ShareGatherer(group, std::move(blocks), owners).gather(rings);
}

}  // namespace ranks
