// Drawn lines brought together: where they meet or cross, they share a point.
#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include "mesh/mesh.hpp"

namespace mesh_import {

class Linework {
 public:
  /// A straight piece of a line, in its direction; other lines touch it at its ends alone.
  struct Piece {
    int from, to;  // points
    int line;      // in the order in which lines were added
  };

  /// Points that lie no further apart than `tolerance` (m) are one: the one that came first.
  explicit Linework(double tolerance) : tolerance_(tolerance) {}

  /// Adds a line of straight pieces, and gives its number.
  int add(const std::vector<Node>& points);

  /// Cuts all lines where another one, or a point of one, lies on them. A line moves by the
  /// tolerance at most. Throws tools::Error where lines lie so close that there is no end to it.
  void join();

  const std::vector<Node>& points() const { return points_; }
  /// The pieces of all lines, one line after the other, each from its start to its end.
  const std::vector<Piece>& pieces() const { return pieces_; }

 private:
  const Node& at(int point) const { return points_[static_cast<std::size_t>(point)]; }
  int point_at(double x, double y);
  double distance(int point, const Piece& piece) const;
  void note_meeting(std::size_t i, std::size_t k);
  bool cut();
  std::vector<int> cuts_in_order(std::size_t i) const;

  double tolerance_;
  std::vector<Node> points_;
  std::map<std::pair<long long, long long>, std::vector<int>> points_of_square_;
  std::vector<Piece> pieces_;
  std::vector<std::vector<int>> cuts_;  // the points that lie on a piece, in any order
  int n_lines_ = 0;
};

}  // namespace mesh_import
