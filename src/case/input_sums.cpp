#include "case/input_sums.hpp"

#include <vector>

#include "utils/PlacedSum.hpp"

namespace cases {

namespace {

/// Of columns of the same length, in their order.
template <class... Columns>
std::uint64_t sum_from(Number first, const Columns&... columns) {
  std::uint64_t sum = 0, column = 0;
  const auto add = [&](const auto& values) {
    utils::PlacedSum of_column(column++);
    of_column.add_column(at(first), std::span(values));
    sum += of_column.value();
  };
  (add(columns), ...);
  return sum;
}

}  // namespace

void InputSums::add(const InputSums& other) {
  for (const auto sum :
       {&InputSums::nodes, &InputSums::cells, &InputSums::edges, &InputSums::boundaries,
        &InputSums::boundary_series, &InputSums::initial, &InputSums::bed, &InputSums::friction,
        &InputSums::sediment, &InputSums::soils, &InputSums::rain}) {
    this->*sum += other.*sum;
  }
}

void InputSums::add_nodes(Number first, const std::vector<double>& x, const std::vector<double>& y,
                          const std::vector<double>& z) {
  nodes += sum_from(first, x, y, z);
}

void InputSums::add_cells(Number first, const Mesh& mesh, std::span<const Number> node_numbers) {
  utils::PlacedSum sum;
  std::vector<Number> of_cell;
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const std::span<const Number> named = mesh.nodes_of(cell);
    of_cell.assign(named.begin(), named.end());
    if (!node_numbers.empty()) {
      for (Number& node : of_cell) node = node_numbers[at(node)];
    }
    sum.add_list(at(first + cell), std::span<const Number>(of_cell));
  }
  cells += sum.value();
}

void InputSums::add_fields(Number first, const CellFields& fields) {
  initial += sum_from(first, fields.level, fields.qx, fields.qy, fields.infiltrated);
  bed += sum_from(first, fields.bed);
  friction += sum_from(first, fields.manning);
  sediment += sum_from(first, fields.sediment);
  soils += sum_from(first, fields.soil);
  rain += sum_from(first, fields.rain);
}

void InputSums::add_edges(Number first, const Mesh& mesh, Number first_boundary) {
  edges += sum_from(first, mesh.left, mesh.right, mesh.node1, mesh.node2);
  utils::PlacedSum conditions, series;
  Number number = first_boundary;
  for (const Boundary& boundary : mesh.boundaries) {
    conditions.add(at(number), first + boundary.edge, boundary.code, boundary.series >= 0,
                   boundary.value);
    series.add(at(number), boundary.series);
    ++number;
  }
  boundaries += conditions.value();
  boundary_series += series.value();
}

InputSums input_sums_of(const Case& contents) {
  const Mesh& mesh = contents.mesh;
  InputSums sums;
  sums.add_nodes(0, mesh.x, mesh.y, mesh.z);
  sums.add_cells(0, mesh);
  sums.add_fields(0, contents.fields);
  sums.add_edges(0, mesh, 0);
  return sums;
}

}  // namespace cases
