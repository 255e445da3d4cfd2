// Parts cut out of a whole case.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "case/Part.hpp"

namespace cases {

/// Copies what a case holds besides arrays over the mesh.
void copy_parameters(const Case& from, Case& to);

/// Knows the neighbours of all cells, so that every part takes a time that goes with its own size.
class PartCutter {
 public:
  /// The case must outlive it.
  explicit PartCutter(const Case& whole);
  /// The same of a case of which the scales are known.
  PartCutter(const Case& whole, const CaseScales& scales);

  /// The part of these cells (ascending), with so many rings of ghosts around them: the first are
  /// the cells that share an edge with own cells, the second those that share one with the first.
  Part part_of(std::span<const Number> own, int rings);
  /// Mesh and fields of that part alone.
  Part mesh_part_of(std::span<const Number> own, int rings);

 private:
  std::span<const Number> edges_of(Number cell) const;
  /// The cell on the other side of an edge; -1 without one.
  Number across(Number edge, Number cell) const;
  bool is_here(Number cell) const { return local_cell_[at(cell)] != absent; }

  void number_cells(std::span<const Number> own, int rings, Part& part);
  void find_border(int rings, Part& part) const;
  void find_edges(Part& part) const;
  std::vector<Number> number_nodes(const Part& part);
  void copy_mesh(Part& part) const;
  void copy_boundaries(Part& part) const;
  void forget(const Part& part);

  static constexpr Number absent = -1;

  const Case& whole_;
  CaseScales scales_;
  std::vector<std::int64_t> first_edge_;  ///< of the cells in edges_of_cells_, and the end
  std::vector<Number> edges_of_cells_;
  std::vector<Number> local_cell_, local_node_;  ///< numbers in the part that is being cut
};

}  // namespace cases
