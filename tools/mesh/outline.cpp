#include "mesh/outline.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "mesh/extent.hpp"
#include "mesh/linework.hpp"
#include "mesh/numbers.hpp"
#include "mesh/rings.hpp"
#include "mesh/snap.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

using Ring = std::vector<Node>;

Ring turned(Ring ring, bool counter_clockwise) {
  if ((twice_area_of(ring) > 0.0) != counter_clockwise) std::reverse(ring.begin(), ring.end());
  return ring;
}

std::string place_of(const Node& point) { return " at " + shown_point(point.x, point.y); }

void expect_ring(const Feature& feature, const Ring& ring) {
  if (ring.size() < 2 || ring.front().x != ring.back().x || ring.front().y != ring.back().y) {
    throw tools::Error(feature.place + ": its ring ends" + place_of(ring.back()) +
                       ", and not where it begins," + place_of(ring.front()) +
                       "; expected a closed one.");
  }
  if (ring.size() < 4 || twice_area_of(ring) == 0.0) {
    throw tools::Error(feature.place + ": its ring" + place_of(ring.front()) +
                       " has no area; expected three corners or more.");
  }
}

void expect_polygon(const Feature& feature) {
  if (feature.shape != Feature::Shape::polygons) {
    throw tools::Error(feature.place + ": found " +
                       (feature.shape == Feature::Shape::lines ? "a line" : "a point") +
                       ", expected a polygon.");
  }
  for (const Ring& ring : feature.parts) expect_ring(feature, ring);
}

/// The inside of one ring.
class RingArea {
 public:
  explicit RingArea(const Ring& ring) : extent_(extent_of(ring)), polygon_({ring}) {}

  bool holds(const Node& point) const {
    return extent_.holds(point) && polygon_.holds(point.x, point.y);
  }
  bool is_on_border(const Node& point, double tolerance) const {
    return extent_.holds(point, tolerance) && polygon_.is_on_side(point.x, point.y, tolerance);
  }

 private:
  Extent extent_;
  Polygon polygon_;
};

/// How much of a ring lies in another one, which it may touch.
enum class Inside { nothing, a_part, all };

/// By the corners of the ring and the middles of its sides, less those where it touches the other.
Inside inside_of(const Ring& ring, const RingArea& area, double tolerance) {
  std::size_t n_inside = 0, n_outside = 0;
  const auto look_at = [&](const Node& point) {
    const bool is_inside = area.holds(point);
    if (area.is_on_border(point, tolerance)) return;
    ++(is_inside ? n_inside : n_outside);
  };
  for (std::size_t i = 1; i < ring.size(); ++i) {
    const Node &a = ring[i - 1], &b = ring[i];
    look_at(a);
    look_at({0.5 * (a.x + b.x), 0.5 * (a.y + b.y), 0.0});
  }
  if (n_inside == 0) return Inside::nothing;
  return n_outside == 0 ? Inside::all : Inside::a_part;
}

/// A side of the border or of a breakline, its ends in increasing order.
using Ends = std::pair<int, int>;

Ends ends_of(const Linework::Piece& piece) { return std::minmax({piece.from, piece.to}); }

/// A closed line of the border.
struct Border {
  const Feature* feature;
  Node start;                           // as it was drawn
  int line;                             // of the linework
  std::vector<Linework::Piece> pieces;  // joined
  std::optional<RingArea> area;         // what they enclose

  bool holds(const Node& point) const { return area->holds(point); }
};

class OutlineBuilder {
 public:
  OutlineBuilder(const DrawnOutline& drawn, double tolerance)
      : drawn_(drawn), tolerance_(tolerance), lines_(tolerance) {}

  Outline build() {
    add_outline();
    add_holes();
    for (const Feature& feature : drawn_.breaklines) add_breakline(feature);
    lines_.join();
    outline_.points = lines_.points();
    close_borders();
    note_sides();
    expect_holes_inside();
    expect_holes_apart();
    make_rings();
    make_sides();
    return std::move(outline_);
  }

 private:
  const Node& at(int point) const { return outline_.points[static_cast<std::size_t>(point)]; }
  Node middle(const Linework::Piece& piece) const {
    const Node &a = at(piece.from), &b = at(piece.to);
    return {0.5 * (a.x + b.x), 0.5 * (a.y + b.y), 0.0};
  }

  void add_outline() {
    if (drawn_.outline.size() != 1) {
      throw tools::Error(drawn_.outline[1].place +
                         ": found a second feature, expected one polygon.");
    }
    const Feature& feature = drawn_.outline.front();
    expect_polygon(feature);
    const Ring& outer = feature.parts.front();
    const RingArea area(outer);
    for (std::size_t i = 1; i < feature.parts.size(); ++i) {
      const Ring& ring = feature.parts[i];
      if (inside_of(ring, area, tolerance_) == Inside::nothing) {
        throw tools::Error(feature.place + ": found a second ring" + place_of(ring.front()) +
                           " outside of the first; expected one polygon, with holes at most.");
      }
    }
    add_border(feature, outer, true);
    for (std::size_t i = 1; i < feature.parts.size(); ++i) {
      add_border(feature, feature.parts[i], false);
    }
  }

  void add_border(const Feature& feature, const Ring& ring, bool is_outer) {
    Border border;
    border.feature = &feature;
    border.start = ring.front();
    border.line = lines_.add(turned(ring, is_outer));
    borders_.push_back(std::move(border));
  }

  /// A ring in another one of its feature is a courtyard, which no water reaches.
  void add_holes() {
    for (const Feature& feature : drawn_.holes) {
      expect_polygon(feature);
      std::vector<RingArea> areas;
      for (const Ring& ring : feature.parts) areas.emplace_back(ring);
      for (std::size_t i = 0; i < feature.parts.size(); ++i) {
        bool is_courtyard = false;
        for (std::size_t k = 0; k < areas.size() && !is_courtyard; ++k) {
          is_courtyard = k != i && inside_of(feature.parts[i], areas[k], tolerance_) == Inside::all;
        }
        outline_.n_courtyards += is_courtyard;
        if (!is_courtyard) add_border(feature, feature.parts[i], false);
      }
    }
  }

  void add_breakline(const Feature& feature) {
    if (feature.shape != Feature::Shape::lines) {
      throw tools::Error(feature.place + ": found " +
                         (feature.shape == Feature::Shape::points ? "a point" : "a polygon") +
                         ", expected a line.");
    }
    Attributes attributes(feature);
    int name = -1;
    if (const auto text = attributes.text("name")) name = number_of_name(*text);
    for (const auto& part : feature.parts) {
      lines_.add(part);
      breaklines_.push_back({&feature, name});
    }
  }

  int number_of_name(const std::string& name) {
    auto& names = outline_.line_names;
    const auto found = std::find(names.begin(), names.end(), name);
    const auto number = static_cast<int>(found - names.begin());
    if (found == names.end()) names.push_back(name);
    return number;
  }

  /// Gives the borders what became of them; none may meet itself.
  void close_borders() {
    for (const Linework::Piece& piece : lines_.pieces()) {
      if (static_cast<std::size_t>(piece.line) >= borders_.size()) continue;
      borders_[static_cast<std::size_t>(piece.line)].pieces.push_back(piece);
    }
    for (Border& border : borders_) {
      const std::string& place = border.feature->place;
      if (border.pieces.size() < 3) {
        throw tools::Error(place + ": its ring" + place_of(border.start) +
                           " has fewer than three corners that lie further apart than " +
                           shown(tolerance_) +
                           " m; expected a larger one, or shorter edges (--size, --refine).");
      }
      std::vector<int> starts;
      Ring ring;
      for (const Linework::Piece& piece : border.pieces) {
        starts.push_back(piece.from);
        ring.push_back(at(piece.from));
      }
      std::sort(starts.begin(), starts.end());
      const auto twice = std::adjacent_find(starts.begin(), starts.end());
      if (twice != starts.end()) {
        throw tools::Error(place + ": its ring crosses or touches itself" + place_of(at(*twice)) +
                           "; expected one that does not.");
      }
      ring.push_back(ring.front());
      border.area.emplace(ring);
    }
  }

  void note_sides() {
    for (std::size_t i = 0; i < borders_.size(); ++i) {
      for (const Linework::Piece& piece : borders_[i].pieces) {
        borders_at_[ends_of(piece)].push_back({piece, i});
      }
    }
  }

  /// The pieces of borders between two points, with the number of their border.
  using BordersAt = std::vector<std::pair<Linework::Piece, std::size_t>>;

  /// Whether a border runs along a piece, in the same direction, or against it.
  enum class Shared { no, along, against };
  static Shared shared_with(std::size_t border, const Linework::Piece& piece,
                            const BordersAt& borders_at_piece) {
    for (const auto& [other, number] : borders_at_piece) {
      if (number != border) continue;
      return other.from == piece.from ? Shared::along : Shared::against;
    }
    return Shared::no;
  }

  /// The pieces of a hole end where they meet the outline: each lies inside or outside of it.
  void expect_holes_inside() const {
    for (std::size_t i = 1; i < borders_.size(); ++i) {
      for (const Linework::Piece& piece : borders_[i].pieces) {
        const Shared shared = shared_with(0, piece, borders_at_.at(ends_of(piece)));
        if (shared == Shared::against) continue;
        if (shared == Shared::no && borders_[0].holds(middle(piece))) continue;
        throw tools::Error(borders_[i].feature->place + ": the hole lies outside of the outline" +
                           place_of(middle(piece)) + "; expected one inside.");
      }
    }
  }

  void expect_holes_apart() const {
    for (std::size_t i = 1; i < borders_.size(); ++i) {
      for (const Linework::Piece& piece : borders_[i].pieces) {
        const Node point = middle(piece);
        const BordersAt& borders_at_piece = borders_at_.at(ends_of(piece));
        for (std::size_t k = 1; k < borders_.size(); ++k) {
          if (k == i) continue;
          const Shared shared = shared_with(k, piece, borders_at_piece);
          if (shared == Shared::against) continue;
          if (shared == Shared::no && !borders_[k].holds(point)) continue;
          throw tools::Error(borders_[i].feature->place + ": the hole overlaps with that of " +
                             borders_[k].feature->place + place_of(point) +
                             "; expected holes that touch at most.");
        }
      }
    }
  }

  /// Sides that two borders have in common, as walls of houses in a row, are none of the mesh's.
  bool is_inside_of_holes(const Linework::Piece& piece) const {
    return borders_at_.at(ends_of(piece)).size() > 1;
  }

  /// The rings of the border, the outer one first.
  void make_rings() {
    std::vector<std::pair<int, int>> sides;
    for (const Border& border : borders_) {
      for (const Linework::Piece& piece : border.pieces) {
        if (!is_inside_of_holes(piece)) sides.emplace_back(piece.from, piece.to);
      }
    }
    outline_.rings = rings_of(outline_.points, sides);
    sort_rings();
  }

  void sort_rings() {
    std::vector<std::size_t> outer;
    for (std::size_t i = 0; i < outline_.rings.size(); ++i) {
      Ring points;
      for (const int point : outline_.rings[i]) points.push_back(at(point));
      points.push_back(points.front());
      const double twice_area = twice_area_of(points);
      outline_.area += 0.5 * twice_area;
      if (twice_area > 0.0) outer.push_back(i);
    }
    if (outer.size() != 1) {
      throw tools::Error(drawn_.outline.front().place + ": found holes that cut the outline in " +
                         std::to_string(outer.size()) + " parts, expected one part.");
    }
    std::swap(outline_.rings.front(), outline_.rings[outer.front()]);
  }

  void make_sides() {
    std::map<Ends, std::size_t> side_at;
    for (const Linework::Piece& piece : lines_.pieces()) {
      const std::size_t border_lines = borders_.size();
      if (static_cast<std::size_t>(piece.line) < border_lines) continue;
      const auto& [feature, name] =
          breaklines_[static_cast<std::size_t>(piece.line) - border_lines];
      expect_on_mesh(*feature, piece);
      const auto [found, is_new] = side_at.try_emplace(ends_of(piece), outline_.sides.size());
      if (is_new) {
        outline_.sides.push_back({piece.from, piece.to, name});
      } else if (outline_.sides[found->second].line < 0) {
        outline_.sides[found->second] = {piece.from, piece.to, name};
      }
    }
    std::erase_if(outline_.sides, [this](const Outline::Side& side) {
      return borders_at_.contains(std::minmax({side.from, side.to}));
    });
  }

  void expect_on_mesh(const Feature& feature, const Linework::Piece& piece) const {
    const auto border = borders_at_.find(ends_of(piece));
    if (border != borders_at_.end() && border->second.size() == 1) return;
    const Node point = middle(piece);
    const bool is_outside = border == borders_at_.end() && !borders_[0].holds(point);
    if (is_outside) {
      throw tools::Error(feature.place + ": the breakline leaves the outline" + place_of(point) +
                         "; expected one inside.");
    }
    for (std::size_t k = 1; k < borders_.size(); ++k) {
      if (border == borders_at_.end() && !borders_[k].holds(point)) continue;
      throw tools::Error(feature.place + ": the breakline runs through the hole of " +
                         borders_[k].feature->place + place_of(point) +
                         "; expected one beside it.");
    }
  }

  const DrawnOutline& drawn_;
  double tolerance_;
  Linework lines_;
  std::vector<Border> borders_;  // in the order of their lines; the first is the outer one
  std::vector<std::pair<const Feature*, int>> breaklines_;  // with the number of their name
  std::map<Ends, BordersAt> borders_at_;
  Outline outline_;
};

}  // namespace

Outline join_outline(const DrawnOutline& drawn, double tolerance) {
  return OutlineBuilder(drawn, tolerance).build();
}

}  // namespace mesh_import
