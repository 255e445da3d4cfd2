// The border of a mesh of what is drawn: outline less holes, whatever they have in common.
#include "mesh/outline.hpp"

#include <gtest/gtest.h>

#include "support/text.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::DrawnOutline;
using mesh_import::Feature;
using mesh_import::Node;
using mesh_import::Outline;
using support::contains;

using Points = std::vector<Node>;

Feature polygon(const std::string& name, const std::vector<Points>& rings) {
  return {name, Feature::Shape::polygons, rings, {}};
}

Points box(double x, double y, double width, double height) {
  return {{x, y, 0}, {x + width, y, 0}, {x + width, y + height, 0}, {x, y + height, 0}, {x, y, 0}};
}

class OutlineOf : public testing::Test {
 protected:
  OutlineOf() { drawn.outline = {polygon("outline", {box(0, 0, 20, 10)})}; }

  void add_hole(const Points& ring) {
    drawn.holes.push_back(polygon("hole " + std::to_string(drawn.holes.size() + 1), {ring}));
  }
  void add_breakline(const Points& points, const std::string& name = "") {
    Feature feature{"line", Feature::Shape::lines, {points}, {}};
    if (!name.empty()) feature.attributes["name"] = name;
    drawn.breaklines.push_back(feature);
  }
  Outline join() const { return mesh_import::join_outline(drawn, 1e-3); }
  std::string fault() const {
    return support::message_of([this] { join(); });
  }

  DrawnOutline drawn;
};

TEST_F(OutlineOf, APolygonRunsCounterClockwiseWhicheverWayItIsDrawn) {
  for (const bool turns : {false, true}) {
    if (turns) std::reverse(drawn.outline[0].parts[0].begin(), drawn.outline[0].parts[0].end());
    const Outline outline = join();
    EXPECT_EQ(outline.area, 200.0);
    EXPECT_EQ(outline.rings.size(), 1U);
    EXPECT_EQ(outline.rings[0].size(), 4U);
  }
}

TEST_F(OutlineOf, HolesOfItsOwnAndOfOthersLeavesThemOut) {
  drawn.outline[0].parts.push_back(box(2, 2, 2, 2));
  add_hole(box(10, 2, 3, 2));
  const Outline outline = join();
  EXPECT_EQ(outline.area, 190.0);
  EXPECT_EQ(outline.rings.size(), 3U);
}

TEST_F(OutlineOf, HousesInARowIsOneHole) {
  add_hole(box(4, 4, 2, 2));
  add_hole(box(6, 4, 2, 3));  // the wall in common is longer on one side
  add_hole(box(8, 5, 2, 2));
  const Outline outline = join();
  EXPECT_EQ(outline.area, 200.0 - 14.0);
  EXPECT_EQ(outline.rings.size(), 2U);
}

TEST_F(OutlineOf, HousesThatTouchInACornerAreTwoHoles) {
  add_hole(box(4, 4, 2, 2));
  add_hole(box(6, 6, 2, 2));
  const Outline outline = join();
  EXPECT_EQ(outline.area, 200.0 - 8.0);
  ASSERT_EQ(outline.rings.size(), 3U);
  EXPECT_EQ(outline.rings[1].size(), 4U);
  EXPECT_EQ(outline.rings[2].size(), 4U);
}

TEST_F(OutlineOf, HousesOfOneFeatureThatTouchWhereTheirRingsBeginAreTwoHoles) {
  drawn.holes = {polygon(
      "houses", {box(6, 6, 2, 2), {{6, 6, 0}, {4, 6, 0}, {4, 4, 0}, {6, 4, 0}, {6, 6, 0}}})};
  EXPECT_EQ(join().area, 200.0 - 8.0);
  EXPECT_EQ(join().n_courtyards, 0U);
  drawn.holes = {polygon("row", {box(6, 4, 2, 2), box(8, 4, 2, 2)})};
  EXPECT_EQ(join().area, 200.0 - 8.0);
}

TEST_F(OutlineOf, ACourtyardMayTouchItsHouseWhereItsRingBegins) {
  const Points courtyard = {{8, 8, 0}, {7, 7.5, 0}, {7.5, 7, 0}, {8, 8, 0}};
  drawn.holes = {polygon("house", {box(4, 4, 4, 4), courtyard})};
  EXPECT_EQ(join().area, 200.0 - 16.0);
  EXPECT_EQ(join().n_courtyards, 1U);
}

TEST_F(OutlineOf, AHoleOfItsOwnMayTouchItWhereItsRingBegins) {
  drawn.outline[0].parts.push_back({{20, 10, 0}, {18, 9, 0}, {19, 8, 0}, {20, 10, 0}});
  EXPECT_EQ(join().area, 200.0 - 1.5);
}

TEST_F(OutlineOf, AHouseOnTheBorderGoesAroundIt) {
  add_hole(box(0, 0, 2, 2));
  add_hole(box(8, 8, 2, 2));
  const Outline outline = join();
  EXPECT_EQ(outline.area, 200.0 - 8.0);
  EXPECT_EQ(outline.rings.size(), 1U);
}

TEST_F(OutlineOf, AHouseWithACourtyardLeavesThatOutToo) {
  drawn.holes = {polygon("house", {box(4, 4, 4, 4), box(5, 5, 1, 1)})};
  EXPECT_EQ(join().area, 200.0 - 16.0);
  EXPECT_EQ(join().n_courtyards, 1U);
}

TEST_F(OutlineOf, BreaklinesKeepsTheSidesWithinTheBorder) {
  add_breakline({{0, 5, 0}, {10, 5, 0}});
  add_breakline({{5, 0, 0}, {5, 10, 0}}, "dike");
  add_breakline({{5, 6, 0}, {5, 8, 0}});
  add_breakline({{1, 0, 0}, {2, 0, 0}});  // along the border
  const Outline outline = join();
  EXPECT_EQ(outline.sides.size(), 6U);
  int n_named = 0;
  for (const Outline::Side& side : outline.sides) n_named += side.line == 0;
  EXPECT_EQ(n_named, 4);
  EXPECT_EQ(outline.line_names, std::vector<std::string>{"dike"});
  EXPECT_EQ(outline.rings[0].size(), 9U);
}

TEST_F(OutlineOf, WhatIsNoPolygonIsRefused) {
  drawn.outline[0].parts[0].pop_back();
  EXPECT_EQ(fault(),
            "outline: its ring ends at (0.000, 10.000), and not where it begins, at (0.000, "
            "0.000); expected a closed one.");
  drawn.outline[0].parts[0] = {{0, 0, 0}, {4, 0, 0}, {0, 0, 0}};
  EXPECT_TRUE(contains(fault(), "outline: its ring at (0.000, 0.000) has no area")) << fault();
  drawn.outline[0].parts[0] = {{0, 0, 0}, {4, 4, 0}, {4, 0, 0}, {0, 3, 0}, {0, 0, 0}};
  EXPECT_TRUE(contains(fault(), "outline: its ring crosses or touches itself at (1.714, 1.714)"))
      << fault();
  drawn.outline[0].shape = Feature::Shape::lines;
  EXPECT_EQ(fault(), "outline: found a line, expected a polygon.");
}

TEST_F(OutlineOf, RingsThatAreTooSmallIsRefusedWithTheirPlace) {
  add_hole(box(5, 6, 0.0005, 0.0005));
  EXPECT_EQ(fault(),
            "hole 1: its ring at (5.000, 6.000) has fewer than three corners that lie further "
            "apart than 0.001 m; expected a larger one, or shorter edges (--size, --refine).");
}

TEST_F(OutlineOf, SeveralPolygonsIsRefused) {
  drawn.outline[0].parts.push_back(box(30, 0, 5, 5));
  EXPECT_TRUE(contains(fault(), "found a second ring at (30.000, 0.000) outside of the first"))
      << fault();
  drawn.outline[0].parts[1] = box(20, 0, 5, 5);
  EXPECT_TRUE(contains(fault(), "found a second ring at (20.000, 0.000) outside of the first"))
      << fault();
  drawn.outline[0].parts.pop_back();
  drawn.outline.push_back(polygon("other", {box(30, 0, 5, 5)}));
  EXPECT_EQ(fault(), "other: found a second feature, expected one polygon.");
}

TEST_F(OutlineOf, HolesThatReachOutIsRefused) {
  for (const Points& ring :
       {box(30, 2, 2, 2), box(18, 2, 4, 4), box(20, 2, 2, 2), box(-1, -1, 30, 30)}) {
    drawn.holes = {polygon("house", {ring})};
    EXPECT_TRUE(contains(fault(), "house: the hole lies outside of the outline at (")) << fault();
  }
}

TEST_F(OutlineOf, HolesThatOverlapIsRefused) {
  for (const Points& ring : {box(5, 5, 2, 2), box(4, 4, 2, 2), box(4.5, 4.5, 1, 1), box(4, 4, 2, 4),
                             Points{{4, 4, 0}, {6, 4, 0}, {5, 5, 0}, {4, 4, 0}}}) {
    drawn.holes.clear();
    add_hole(box(4, 4, 2, 2));
    add_hole(ring);
    EXPECT_TRUE(contains(fault(), "the hole overlaps with that of hole ")) << fault();
  }
  drawn.holes = {polygon("house", {box(4, 4, 2, 2), box(5, 5, 2, 2)})};
  EXPECT_TRUE(contains(fault(), "house: the hole overlaps with that of house at (")) << fault();
}

TEST_F(OutlineOf, HolesThatCutItInPartsIsRefused) {
  add_hole(box(4, 0, 2, 6));
  add_hole(box(4, 6, 2, 4));
  EXPECT_TRUE(contains(fault(), "found holes that cut the outline in 2 parts")) << fault();
}

TEST_F(OutlineOf, BreaklinesThatLeaveTheMeshIsRefused) {
  add_hole(box(4, 4, 2, 2));
  add_hole(box(6, 4, 2, 2));
  const std::vector<std::pair<Points, std::string>> faults = {
      {{{1, 1, 0}, {25, 1, 0}}, "line: the breakline leaves the outline at (22.500, 1.000)"},
      {{{1, 5, 0}, {10, 5, 0}}, "line: the breakline runs through the hole of hole 1 at (5.000"},
      {{{6, 4, 0}, {6, 6, 0}}, "line: the breakline runs through the hole of hole "}};
  for (const auto& [points, message] : faults) {
    drawn.breaklines.clear();
    add_breakline(points);
    EXPECT_TRUE(contains(fault(), message)) << fault();
  }
  drawn.breaklines[0].shape = Feature::Shape::points;
  EXPECT_EQ(fault(), "line: found a point, expected a line.");
}

}  // namespace
