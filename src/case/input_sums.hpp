// Checksums of what a case holds of its mesh and its cells, to tell whether another one is the
// same. Parts of a case, in the hands of several ranks, add up to those of the whole.
#pragma once

#include <cstdint>
#include <span>

#include "case/Case.hpp"

namespace cases {

struct InputSums {
  std::uint64_t nodes = 0, cells = 0, edges = 0;
  std::uint64_t boundaries = 0;         ///< their edges, codes and values, and whether by a series
  std::uint64_t boundary_series = 0;    ///< by which one
  std::uint64_t initial = 0;            ///< water and infiltrated depths
  std::uint64_t bed = 0, friction = 0;  ///< of the cells
  std::uint64_t sediment = 0;           ///< on the bed of the cells
  std::uint64_t soils = 0, rain = 0;    ///< which ones the cells have

  /// Those of another part of the same case.
  void add(const InputSums& other);

  // Parts of a case, from a number on in the whole one.
  void add_nodes(Number first, const std::vector<double>& x, const std::vector<double>& y,
                 const std::vector<double>& z);
  /// Cells of nodes that have numbers in the whole case; none are given where they are the same.
  void add_cells(Number first, const Mesh& cells, std::span<const Number> node_numbers = {});
  void add_fields(Number first, const CellFields& fields);
  /// Edges of cells and nodes by their numbers in the whole case, with boundaries on them, which
  /// are numbered from `first_boundary` on.
  void add_edges(Number first, const Mesh& edges, Number first_boundary);
};

InputSums input_sums_of(const Case& contents);

}  // namespace cases
