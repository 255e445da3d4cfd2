#include "case/input_sums.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "support/basin.hpp"

namespace {

using cases::at;
using cases::Number;

template <class Value>
std::vector<Value> slice(const std::vector<Value>& column, Number begin, Number end) {
  if (column.empty()) return {};
  return {column.begin() + begin, column.begin() + end};
}

/// Of the `part`-th of so many blocks of a case.
cases::InputSums sums_of_block(const cases::Case& whole, int part, int parts) {
  const cases::Mesh& mesh = whole.mesh;
  const auto begin = [&](Number count) { return count * part / parts; };
  const auto end = [&](Number count) { return count * (part + 1) / parts; };
  const auto block = [&](const auto& column, Number count) {
    return slice(column, begin(count), end(count));
  };
  cases::InputSums sums;
  const Number nodes = mesh.n_nodes(), cells = mesh.n_cells(), edges = mesh.n_edges();
  sums.add_nodes(begin(nodes), block(mesh.x, nodes), block(mesh.y, nodes), block(mesh.z, nodes));

  cases::Mesh some_cells;  // of nodes with numbers of their own, from the last one on
  std::vector<Number> numbers;
  for (Number node = nodes - 1; node >= 0; --node) numbers.push_back(node);
  for (Number cell = begin(cells); cell < end(cells); ++cell) {
    std::vector<Number> named;
    for (const Number node : mesh.nodes_of(cell)) named.push_back(nodes - 1 - node);
    some_cells.add_cell(named);
  }
  sums.add_cells(begin(cells), some_cells, numbers);

  cases::CellFields fields;
  cases::CellFields::visit_parts(whole.fields, [&](const auto&... all) {
    cases::CellFields::visit_parts(fields,
                                   [&](auto&... some) { ((some = block(all, cells)), ...); });
  });
  sums.add_fields(begin(cells), fields);

  cases::Mesh some_edges;
  for (const auto column :
       {&cases::Mesh::left, &cases::Mesh::right, &cases::Mesh::node1, &cases::Mesh::node2}) {
    some_edges.*column = block(mesh.*column, edges);
  }
  Number first_boundary = 0;
  for (const cases::Boundary& boundary : mesh.boundaries) {
    if (boundary.edge < begin(edges)) ++first_boundary;
    if (boundary.edge < begin(edges) || boundary.edge >= end(edges)) continue;
    some_edges.boundaries.push_back(boundary);
    some_edges.boundaries.back().edge -= begin(edges);
  }
  sums.add_edges(begin(edges), some_edges, first_boundary);
  return sums;
}

}  // namespace

TEST(InputSums, OfBlocksAddUpToThoseOfTheWholeCase) {
  const support::TemporaryFolder folder;
  const cases::Case whole = support::basin({.sediments = true}, folder);
  const cases::InputSums expected = cases::input_sums_of(whole);
  EXPECT_NE(expected.soils, 0U);
  for (const int parts : {2, 7}) {
    cases::InputSums sums;
    for (int part = parts - 1; part >= 0; --part) sums.add(sums_of_block(whole, part, parts));
    EXPECT_EQ(std::memcmp(&sums, &expected, sizeof sums), 0) << parts;
  }
}
