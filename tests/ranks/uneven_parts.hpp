// A mesh cut into parts that are not alike.
#pragma once

#include <algorithm>
#include <vector>

#include "engine/aligned_vector.hpp"
#include "ranks/cut_along_curve.hpp"
#include "ranks/share_of.hpp"

namespace test_ranks {

/// Parts along the curve, of which each has a third more cells than the one before or so.
inline std::vector<ranks::Cells> uneven_parts(const cases::Mesh& mesh, int count) {
  constexpr int pieces_of_all = 60;
  const auto pieces = ranks::cut_along_curve(mesh, pieces_of_all);
  std::vector<ranks::Cells> parts(engine::at(count));
  double weight = 1.0, total = 0.0;
  std::vector<double> ends;
  for (int part = 0; part < count; ++part, weight *= 1.33) ends.push_back(total += weight);
  std::size_t part = 0;
  for (std::size_t k = 0; k < pieces.size(); ++k) {
    while (static_cast<double>(k) >= ends[part] / total * pieces_of_all) ++part;
    parts[part].insert(parts[part].end(), pieces[k].begin(), pieces[k].end());
  }
  for (ranks::Cells& cells : parts) std::sort(cells.begin(), cells.end());
  return parts;
}

}  // namespace test_ranks
