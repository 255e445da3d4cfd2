#include "mesh/linework.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "mesh/numbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

/// Twice the area of a triangle, positive where its corners run counter-clockwise.
double turn(const Node& a, const Node& b, const Node& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

}  // namespace

int Linework::add(const std::vector<Node>& points) {
  int before = -1;
  for (const Node& point : points) {
    const int here = point_at(point.x, point.y);
    if (before >= 0 && here != before) pieces_.push_back({before, here, n_lines_});
    before = here;
  }
  return n_lines_++;
}

int Linework::point_at(double x, double y) {
  const auto column = std::llround(std::floor(x / tolerance_));
  const auto row = std::llround(std::floor(y / tolerance_));
  for (long long i = column - 1; i <= column + 1; ++i) {
    for (long long j = row - 1; j <= row + 1; ++j) {
      const auto square = points_of_square_.find({i, j});
      if (square == points_of_square_.end()) continue;
      for (const int point : square->second) {
        if (std::hypot(at(point).x - x, at(point).y - y) <= tolerance_) return point;
      }
    }
  }
  points_.push_back({x, y, 0.0});
  const int point = static_cast<int>(points_.size()) - 1;
  points_of_square_[{column, row}].push_back(point);
  return point;
}

double Linework::distance(int point, const Piece& piece) const {
  const Node &p = at(point), &a = at(piece.from), &b = at(piece.to);
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double along = ((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy);
  const double part = std::clamp(along, 0.0, 1.0);
  return std::hypot(a.x + part * dx - p.x, a.y + part * dy - p.y);
}

/// Notes where two pieces touch or cross, other than at an end that they share.
void Linework::note_meeting(std::size_t i, std::size_t k) {
  const Piece &one = pieces_[i], &two = pieces_[k];
  bool touches = false;
  const auto note_end = [&](int point, const Piece& other, std::size_t place) {
    if (point == other.from || point == other.to) {
      touches = true;
    } else if (distance(point, other) <= tolerance_) {
      cuts_[place].push_back(point);
      touches = true;
    }
  };
  note_end(one.from, two, k);
  note_end(one.to, two, k);
  note_end(two.from, one, i);
  note_end(two.to, one, i);
  if (touches) return;
  const Node &a = at(one.from), &b = at(one.to), &c = at(two.from), &d = at(two.to);
  const double at_c = turn(a, b, c), at_d = turn(a, b, d);
  if ((at_c > 0.0) == (at_d > 0.0) || (turn(c, d, a) > 0.0) == (turn(c, d, b) > 0.0)) return;
  const double part = at_c / (at_c - at_d);
  const int crossing = point_at(c.x + part * (d.x - c.x), c.y + part * (d.y - c.y));
  cuts_[i].push_back(crossing);
  cuts_[k].push_back(crossing);
}

std::vector<int> Linework::cuts_in_order(std::size_t i) const {
  const Piece& piece = pieces_[i];
  const Node &a = at(piece.from), &b = at(piece.to);
  const auto along = [&](int point) {
    return (at(point).x - a.x) * (b.x - a.x) + (at(point).y - a.y) * (b.y - a.y);
  };
  std::vector<int> cuts = cuts_[i];
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  std::erase_if(cuts, [&](int point) { return point == piece.from || point == piece.to; });
  std::stable_sort(cuts.begin(), cuts.end(), [&](int p, int q) { return along(p) < along(q); });
  return cuts;
}

/// Cuts every piece once where others meet it; whether there was anything to cut.
bool Linework::cut() {
  cuts_.assign(pieces_.size(), {});
  const auto low_x = [this](std::size_t i) {
    return std::min(at(pieces_[i].from).x, at(pieces_[i].to).x) - tolerance_;
  };
  const auto high_x = [this](std::size_t i) {
    return std::max(at(pieces_[i].from).x, at(pieces_[i].to).x);
  };
  const auto y_range = [this](std::size_t i) {
    return std::minmax({at(pieces_[i].from).y, at(pieces_[i].to).y});
  };
  std::vector<std::size_t> order(pieces_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t i, std::size_t k) { return low_x(i) < low_x(k); });
  for (std::size_t first = 0; first < order.size(); ++first) {
    const std::size_t i = order[first];
    const auto [low, high] = y_range(i);
    for (std::size_t next = first + 1; next < order.size(); ++next) {
      const std::size_t k = order[next];
      if (low_x(k) > high_x(i)) break;
      const auto [other_low, other_high] = y_range(k);
      if (other_low > high + tolerance_ || low > other_high + tolerance_) continue;
      note_meeting(i, k);
    }
  }
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    int from = pieces_[i].from;
    for (const int point : cuts_in_order(i)) {
      pieces.push_back({from, point, pieces_[i].line});
      from = point;
    }
    pieces.push_back({from, pieces_[i].to, pieces_[i].line});
  }
  const bool is_changed = pieces.size() > pieces_.size();
  pieces_ = std::move(pieces);
  return is_changed;
}

void Linework::join() {
  constexpr int most_rounds = 20;  // a cut bends a line a little, so that others may meet it
  for (int round = 0; round < most_rounds; ++round) {
    if (!cut()) return;
  }
  throw tools::Error("lines are drawn within " + shown(tolerance_) +
                     " m of each other, over and over; expected lines further apart.");
}

}  // namespace mesh_import
