// The cells of a mesh along a Hilbert curve, of which ranks take runs.
#pragma once

#include <span>
#include <vector>

#include "case/Mesh.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

/// The curve consists of patches: runs of one length (the last may be shorter), each of which
/// belongs to one rank as a whole.
class Curve {
 public:
  explicit Curve(const cases::Mesh& mesh, int cells_per_patch = 1);

  int patches() const;
  /// Values of all cells, in the order of their numbers, summed up by patch.
  std::vector<double> sums_of_patches(std::span<const double> of_cells) const;
  /// Where the runs begin that weigh about as much as each other, by patch, and the end of the
  /// last. A run weighs less than the mean and one patch more, unless runs behind it would have no
  /// patch. Weights are finite and not below 0. There are as many runs as ranks are wanted, at
  /// least 1; fewer where there are fewer patches.
  std::vector<int> cuts(std::span<const double> weights, int ranks) const;
  /// The cells of the runs between these cuts, each in ascending order of its numbers.
  std::vector<Cells> runs(const std::vector<int>& cuts) const;

 private:
  std::vector<cases::Number> order_;  ///< of the cells
  int cells_per_patch_;
};

/// The weights of the runs between cuts.
std::vector<double> weights_of_runs(std::span<const double> weights, const std::vector<int>& cuts);

}  // namespace ranks
