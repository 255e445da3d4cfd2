#include "case/PointLocator.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "support/trials.hpp"

namespace {

using cases::Number;
using physics::PlanPoint;

/// The rule itself: cells one after the other, three strict comparisons for every triangle.
Number first_cell_around(const cases::Mesh& mesh, double x, double y) {
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const auto nodes = mesh.nodes_of(cell);
    const physics::SpacePoint center = mesh.center_of(cell);
    for (std::size_t j = 0; j < nodes.size(); ++j) {
      const PlanPoint a = mesh.plan_node(nodes[j]);
      const PlanPoint b = mesh.plan_node(nodes[(j + 1) % nodes.size()]);
      const double cx = center.x - x, cy = center.y - y;
      const double ax = a.x - x, ay = a.y - y;
      const double bx = b.x - x, by = b.y - y;
      const int count = (ax * by > bx * ay) + (cx * ay > ax * cy) + (bx * cy > cx * by);
      if (count == 0 || count == 3) return cell;
    }
  }
  return -1;
}

class PointLocatorTest : public testing::Test {
 protected:
  Number add_node(double x, double y) {
    mesh.x.push_back(x);
    mesh.y.push_back(y);
    mesh.z.push_back(0.0);
    return mesh.n_nodes() - 1;
  }
  void add_cell(const std::vector<Number>& nodes) { mesh.add_cell(nodes); }

  /// Squares with moved corners, whole or cut into triangles, running either way.
  void add_sheet(int n, double x0, double y0, double size) {
    std::uniform_real_distribution<double> shift(-0.3, 0.3);
    const Number first = mesh.n_nodes();
    std::vector<std::vector<Number>> cells;
    for (int j = 0; j <= n; ++j) {
      for (int i = 0; i <= n; ++i) {
        add_node(x0 + size * (i + shift(random)), y0 + size * (j + shift(random)));
      }
    }
    const auto node = [&](int i, int j) { return first + j * (n + 1) + i; };
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < n; ++i) {
        const Number sw = node(i, j), se = node(i + 1, j), nw = node(i, j + 1),
                     ne = node(i + 1, j + 1);
        if (random() % 3 == 0) {
          cells.push_back(random() % 2 == 0 ? std::vector{sw, se, ne, nw}
                                            : std::vector{nw, ne, se, sw});
        } else {
          cells.push_back(random() % 2 == 0 ? std::vector{sw, se, ne} : std::vector{ne, se, sw});
          cells.push_back(random() % 2 == 0 ? std::vector{sw, ne, nw} : std::vector{nw, ne, sw});
        }
      }
    }
    std::shuffle(cells.begin(), cells.end(), random);
    for (const auto& cell : cells) add_cell(cell);
  }

  void expect_the_rule(double x, double y) {
    const Number expected = first_cell_around(mesh, x, y);
    ASSERT_EQ(locator->cell_at(x, y), expected) << x << ' ' << y;
    found += expected >= 0 ? 1 : 0;
  }
  /// Points at nodes, centres and on sides, each also a few units in the last place beside.
  void expect_the_rule_at_marks() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (Number k = 0; k < mesh.n_cells(); k += 1 + mesh.n_cells() / support::trials(200)) {
      const PlanPoint center = {mesh.center_of(k).x, mesh.center_of(k).y};
      const auto nodes = mesh.nodes_of(k);
      const auto middle = [](PlanPoint a, PlanPoint b) {
        return PlanPoint{(a.x + b.x) / 2.0, (a.y + b.y) / 2.0};
      };
      std::vector<PlanPoint> marks = {center};
      for (std::size_t j = 0; j < nodes.size(); ++j) {
        const PlanPoint a = mesh.plan_node(nodes[j]);
        const PlanPoint b = mesh.plan_node(nodes[(j + 1) % nodes.size()]);
        const double along = std::uniform_real_distribution<double>(-0.5, 1.5)(random);
        marks.push_back(a);
        marks.push_back(middle(a, b));
        marks.push_back(middle(a, center));
        marks.push_back({a.x + along * (b.x - a.x), a.y + along * (b.y - a.y)});
      }
      for (const PlanPoint& mark : marks) {
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(mark.x, mark.y));
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(std::nextafter(mark.x, infinity), mark.y));
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(mark.x, std::nextafter(mark.y, -infinity)));
      }
    }
  }
  /// Random points within some widths around the middle of a square.
  void expect_the_rule_around(double x, double y, double size, double widths, int points) {
    std::uniform_real_distribution<double> place(0.5 - widths, 0.5 + widths);
    for (int k = 0; k < support::trials(points); ++k) {
      const double px = x + size * place(random);
      ASSERT_NO_FATAL_FAILURE(expect_the_rule(px, y + size * place(random)));
    }
  }
  void build() { locator = std::make_unique<PointLocator>(mesh); }

  std::mt19937_64 random{3};
  cases::Mesh mesh;
  std::unique_ptr<PointLocator> locator;
  int found = 0;  ///< points in a cell
};

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleOnAMeshOfMixedCells) {
  const struct {
    double x, y, size;
  } places[] = {{0.0, 0.0, 1.0}, {-7.0, 512345.678, 0.1}, {5e5, 5.6e6, 25.0}, {1e9, -1e9, 1e-3}};
  for (const auto& place : places) {
    mesh = {};
    found = 0;
    add_sheet(20, place.x, place.y, place.size);
    build();
    const double extent = 20 * place.size;
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 0.6, 3000));
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 30.0, 1000));
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 1e18, 100));
    EXPECT_GT(found, support::trials(2000));
  }
}

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleWhereCellsHaveNoArea) {
  for (int k = 0; k < 60; ++k) {
    const double x = static_cast<double>(random() % 9), y = static_cast<double>(random() % 9);
    const double dx = static_cast<double>(random() % 3), dy = static_cast<double>(random() % 3);
    switch (k % 4) {
      case 0:  // on a line
        add_cell({add_node(x, y), add_node(x + dx, y + dy), add_node(x + 2 * dx, y + 2 * dy)});
        break;
      case 1:  // at a point
        add_cell({add_node(x, y), add_node(x, y), add_node(x, y)});
        break;
      case 2:  // two nodes alike
        add_cell({add_node(x, y), add_node(x, y), add_node(x + dx, y - dy)});
        break;
      case 3:  // nearly on a line
        add_cell({add_node(x, y), add_node(x + 1.0, y + 1.0), add_node(x + 2.0, y + 2.0 + 1e-15)});
        break;
    }
  }
  for (int k = 0; k < 100; ++k) {  // ordinary triangles behind them
    const double x = static_cast<double>(random() % 9), y = static_cast<double>(random() % 9);
    add_cell({add_node(x, y), add_node(x + 1.0, y), add_node(x, y + 1.0)});
  }
  for (const bool one_cell_only : {false, true}) {
    if (one_cell_only) mesh.cell_nodes.resize(3);
    build();
    for (double x = -3.0; x <= 13.0; x += 0.25) {
      for (double y = -3.0; y <= 13.0; y += 0.25) {
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(x, y));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
  }
  EXPECT_GT(found, support::trials(100));
}

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleWhereCellsOverlap) {
  std::uniform_real_distribution<double> place(0.0, 100.0);
  std::uniform_real_distribution<double> magnitude(-12.0, 2.0);
  for (int k = 0; k < 1500; ++k) {  // slivers and giants among small ones, running either way
    const double x = place(random), y = place(random), size = std::pow(10.0, magnitude(random));
    const auto corner = [&] {
      return add_node(x + size * (place(random) - 50.0), y + 0.01 * size * (place(random) - 50.0));
    };
    const Number a = corner(), b = corner(), c = corner();
    add_cell({a, b, c});
  }
  build();
  ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
  ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(0.0, 0.0, 100.0, 2.0, 3000));
  EXPECT_GT(found, support::trials(1000));
}

TEST_F(PointLocatorTest, FindsNoCellWhereThereIsNone) {
  build();
  EXPECT_EQ(locator->cell_at(0.0, 0.0), -1);
  add_cell({add_node(0.0, 0.0), add_node(1.0, 0.0), add_node(0.0, 1.0)});
  build();
  EXPECT_EQ(locator->cell_at(2.0, 0.5), -1);
  EXPECT_EQ(locator->cell_at(0.2, 0.3), 0);
}

}  // namespace
