// The cells of a mesh along a Hilbert curve, of which ranks take runs.
#pragma once

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
  /// The cells of the runs between cuts, as cuts_of() gives them, each in ascending order of its
  /// numbers.
  std::vector<Cells> runs(const std::vector<int>& cuts) const;

 private:
  std::vector<cases::Number> order_;  ///< of the cells
  int cells_per_patch_;
};

}  // namespace ranks
