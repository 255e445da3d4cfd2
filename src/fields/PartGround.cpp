#include "fields/PartGround.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "case/PointLocator.hpp"
#include "ranks/Blocks.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

GroundEdge edge_of(const cases::Part& part, Number edge) {
  GroundEdge result = ground_edge(part.contents.mesh, edge);
  result.number = part.edge_number[at(edge)];
  for (Number* const cell : {&result.left, &result.right}) {
    if (*cell >= 0) *cell = part.cell_number[at(*cell)];
  }
  return result;
}

GroundCell cell_of(const cases::Part& part, Number cell) {
  GroundCell result = ground_cell(part.contents, cell);
  result.number = part.cell_number[at(cell)];
  return result;
}

/// Those that begin at an own cell.
Surroundings edges_of(const cases::Part& part, std::vector<Number> numbers) {
  Surroundings found;
  ranks::make_distinct(numbers);
  for (const Number number : numbers) {
    const Number edge = ranks::place_among(part.edge_number, number);
    const bool is_here = at(edge) < part.edge_number.size() && part.edge_number[at(edge)] == number;
    if (is_here && part.contents.mesh.left[at(edge)] < part.owned) {
      found.edges.push_back(edge_of(part, edge));
    }
  }
  return found;
}

/// The own ones of these cells.
std::vector<Number> own_among(const cases::Part& part, const std::vector<Number>& numbers) {
  std::vector<Number> own;
  for (const Number number : numbers) {
    const Number cell = part.own_cell(number);
    if (cell >= 0) own.push_back(cell);
  }
  ranks::make_distinct(own);
  return own;
}

Surroundings around(const cases::Part& part, const std::vector<Number>& numbers) {
  const std::vector<Number> asked = own_among(part, numbers);
  if (asked.empty()) return {};
  const cases::Mesh& mesh = part.contents.mesh;
  const auto is_asked_for = [&](Number cell) {
    return std::binary_search(asked.begin(), asked.end(), cell);
  };
  Surroundings found;
  std::map<Number, Number> at_sides;  // cells here by their numbers
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    if (!is_asked_for(left) && !is_asked_for(right)) continue;
    found.edges.push_back(edge_of(part, edge));
    for (const Number cell : {left, right}) {
      if (cell >= 0) at_sides[part.cell_number[at(cell)]] = cell;
    }
  }
  for (const auto& [number, cell] : at_sides) found.cells.push_back(cell_of(part, cell));
  return found;
}

std::vector<Number> cells_at(const cases::Part& part, const GroundQuestion& question) {
  if (question.x.empty()) return {};
  const PointLocator locator(part.contents.mesh, part.owned);
  std::vector<Number> cells;
  for (std::size_t i = 0; i < question.x.size(); ++i) {
    const Number cell = locator.cell_at(question.x[i], question.y[i]);
    cells.push_back(cell < 0 ? -1 : part.cell_number[at(cell)]);
  }
  return cells;
}

}  // namespace

void GroundAnswer::add(GroundAnswer other) {
  found.add(std::move(other.found));
  for (std::size_t i = 0; i < other.cells_at.size(); ++i) {
    const Number cell = other.cells_at[i];
    Number& first = cells_at[i];
    if (cell >= 0 && (first < 0 || cell < first)) first = cell;
  }
}

GroundAnswer answer_of(const cases::Part& part, const GroundQuestion& question) {
  GroundAnswer answer;
  switch (question.kind) {
    case GroundQuestion::Kind::cells:
      for (const Number cell : own_among(part, question.numbers)) {
        answer.found.cells.push_back(cell_of(part, cell));
      }
      break;
    case GroundQuestion::Kind::edges:
      answer.found = edges_of(part, question.numbers);
      break;
    case GroundQuestion::Kind::around:
      answer.found = around(part, question.numbers);
      break;
    case GroundQuestion::Kind::cells_at:
      answer.cells_at = cells_at(part, question);
      break;
  }
  return answer;
}

GroundAnswer answer_together(ranks::Group& group, const cases::Part& part,
                             GroundQuestion question) {
  if (group.rank() == 0) {
    ranks::broadcast_out(group, question);
  } else {
    ranks::broadcast_in(group, question);
  }
  GroundAnswer own = answer_of(part, question);
  std::map<int, GroundAnswer> sent;
  if (group.rank() > 0) sent[0] = std::move(own);
  for (auto& [rank, answer] : ranks::exchange_values(group, std::move(sent))) {
    own.add(std::move(answer));
  }
  return own;
}

cases::CellGeometry RanksGround::geometry_of(Number cell) const {
  const GroundAnswer answer = ask_({.kind = GroundQuestion::Kind::cells, .numbers = {cell}});
  return answer.found.cells.front().geometry();
}

std::vector<GroundEdge> RanksGround::edges(std::span<const Number> numbers) const {
  const GroundAnswer answer =
      ask_({.kind = GroundQuestion::Kind::edges, .numbers = {numbers.begin(), numbers.end()}});
  std::vector<GroundEdge> edges;
  for (const Number number : numbers) edges.push_back(answer.found.edge(number));
  return edges;
}

std::vector<Number> RanksGround::cells_at(std::span<const physics::PlanPoint> points) const {
  GroundQuestion question{.kind = GroundQuestion::Kind::cells_at};
  for (const physics::PlanPoint& point : points) {
    question.x.push_back(point.x);
    question.y.push_back(point.y);
  }
  return ask_(std::move(question)).cells_at;
}

Surroundings RanksGround::around(std::span<const Number> cells) const {
  return ask_({.kind = GroundQuestion::Kind::around, .numbers = {cells.begin(), cells.end()}})
      .found;
}

}  // namespace fields
