#include "domain/PointLocator.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "model/CellSWE.hpp"

namespace {

/// The rule itself: cells one after the other, three strict comparisons for every triangle.
int first_cell_around(const PointLocator::Cells& cells, double x, double y) {
  for (const auto& cell : cells) {
    for (int j = 0; j < cell->number_of_nodes(); ++j) {
      const double cx = cell->center.x - x, cy = cell->center.y - y;
      const double ax = cell->get_node(j)->x - x, ay = cell->get_node(j)->y - y;
      const double bx = cell->next_node(j)->x - x, by = cell->next_node(j)->y - y;
      const int count = (ax * by > bx * ay) + (cx * ay > ax * cy) + (bx * cy > cx * by);
      if (count == 0 || count == 3) return cell->id;
    }
  }
  return -1;
}

class PointLocatorTest : public testing::Test {
 protected:
  void reserve_nodes(std::size_t n) { nodes.reserve(n); }  // cells point to them
  const MeshNode* add_node(double x, double y) { return &nodes.emplace_back(x, y, 0.0); }
  void add_cell(const std::vector<const MeshNode*>& vertices) {
    cells.push_back(std::make_unique<CellSWE>(static_cast<int>(cells.size()), vertices));
  }

  /// Squares with moved corners, whole or cut into triangles, running either way.
  void add_sheet(int n, double x0, double y0, double size) {
    std::uniform_real_distribution<double> shift(-0.3, 0.3);
    const std::size_t first = nodes.size();
    reserve_nodes(first + static_cast<std::size_t>((n + 1) * (n + 1)));
    for (int j = 0; j <= n; ++j) {
      for (int i = 0; i <= n; ++i) {
        add_node(x0 + size * (i + shift(random)), y0 + size * (j + shift(random)));
      }
    }
    const auto node = [&](int i, int j) {
      return &nodes[first + static_cast<std::size_t>(j * (n + 1) + i)];
    };
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < n; ++i) {
        const MeshNode *sw = node(i, j), *se = node(i + 1, j), *nw = node(i, j + 1),
                       *ne = node(i + 1, j + 1);
        if (random() % 3 == 0) {
          add_cell(random() % 2 == 0 ? std::vector{sw, se, ne, nw} : std::vector{nw, ne, se, sw});
        } else {
          add_cell(random() % 2 == 0 ? std::vector{sw, se, ne} : std::vector{ne, se, sw});
          add_cell(random() % 2 == 0 ? std::vector{sw, ne, nw} : std::vector{nw, ne, sw});
        }
      }
    }
    std::shuffle(cells.begin(), cells.end(), random);
    for (std::size_t i = 0; i < cells.size(); ++i) cells[i]->id = static_cast<int>(i);
  }

  void expect_the_rule(double x, double y) {
    const ComputationalCell* const cell = locator->cell_at(x, y);
    const int expected = first_cell_around(cells, x, y);
    ASSERT_EQ(cell == nullptr ? -1 : cell->id, expected) << x << ' ' << y;
    found += expected >= 0 ? 1 : 0;
  }
  /// Points at nodes, centres and on sides, each also a few units in the last place beside.
  void expect_the_rule_at_marks() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < cells.size(); k += 1 + cells.size() / 200) {
      const ComputationalCell& cell = *cells[k];
      std::vector<MeshNode> marks = {cell.center};
      for (int j = 0; j < cell.number_of_nodes(); ++j) {
        const MeshNode &a = *cell.get_node(j), &b = *cell.next_node(j);
        const double along = std::uniform_real_distribution<double>(-0.5, 1.5)(random);
        marks.push_back(a);
        marks.push_back((a + b) / 2.0);
        marks.push_back((a + cell.center) / 2.0);
        marks.emplace_back(a.x + along * (b.x - a.x), a.y + along * (b.y - a.y), 0.0);
      }
      for (const MeshNode& mark : marks) {
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(mark.x, mark.y));
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(std::nextafter(mark.x, infinity), mark.y));
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(mark.x, std::nextafter(mark.y, -infinity)));
      }
    }
  }
  /// Random points within some widths around the middle of a square.
  void expect_the_rule_around(double x, double y, double size, double widths, int points) {
    std::uniform_real_distribution<double> place(0.5 - widths, 0.5 + widths);
    for (int k = 0; k < points; ++k) {
      const double px = x + size * place(random);
      ASSERT_NO_FATAL_FAILURE(expect_the_rule(px, y + size * place(random)));
    }
  }
  void build() { locator = std::make_unique<PointLocator>(cells); }

  std::mt19937_64 random{3};
  std::vector<MeshNode> nodes;
  PointLocator::Cells cells;
  std::unique_ptr<PointLocator> locator;
  int found = 0;  ///< points in a cell
};

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleOnAMeshOfMixedCells) {
  const struct {
    double x, y, size;
  } places[] = {{0.0, 0.0, 1.0}, {-7.0, 512345.678, 0.1}, {5e5, 5.6e6, 25.0}, {1e9, -1e9, 1e-3}};
  for (const auto& place : places) {
    cells.clear();
    nodes.clear();
    found = 0;
    add_sheet(20, place.x, place.y, place.size);
    build();
    const double extent = 20 * place.size;
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 0.6, 3000));
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 30.0, 1000));
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(place.x, place.y, extent, 1e18, 100));
    EXPECT_GT(found, 2000);
  }
}

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleWhereCellsHaveNoArea) {
  reserve_nodes(1000);
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
    if (one_cell_only) cells.resize(1);
    build();
    for (double x = -3.0; x <= 13.0; x += 0.25) {
      for (double y = -3.0; y <= 13.0; y += 0.25) {
        ASSERT_NO_FATAL_FAILURE(expect_the_rule(x, y));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
  }
  EXPECT_GT(found, 100);
}

TEST_F(PointLocatorTest, GivesTheCellOfTheRuleWhereCellsOverlap) {
  reserve_nodes(6000);
  std::uniform_real_distribution<double> place(0.0, 100.0);
  std::uniform_real_distribution<double> magnitude(-12.0, 2.0);
  for (int k = 0; k < 1500; ++k) {  // slivers and giants among small ones, running either way
    const double x = place(random), y = place(random), size = std::pow(10.0, magnitude(random));
    const auto corner = [&] {
      return add_node(x + size * (place(random) - 50.0), y + 0.01 * size * (place(random) - 50.0));
    };
    const MeshNode *a = corner(), *b = corner(), *c = corner();
    add_cell({a, b, c});
  }
  build();
  ASSERT_NO_FATAL_FAILURE(expect_the_rule_at_marks());
  ASSERT_NO_FATAL_FAILURE(expect_the_rule_around(0.0, 0.0, 100.0, 2.0, 3000));
  EXPECT_GT(found, 1000);
}

TEST_F(PointLocatorTest, FindsNoCellWhereThereIsNone) {
  build();
  EXPECT_EQ(locator->cell_at(0.0, 0.0), nullptr);
  reserve_nodes(3);
  add_cell({add_node(0.0, 0.0), add_node(1.0, 0.0), add_node(0.0, 1.0)});
  build();
  EXPECT_EQ(locator->cell_at(2.0, 0.5), nullptr);
  EXPECT_EQ(locator->cell_at(0.2, 0.3), cells[0].get());
}

}  // namespace
