#include "mesh/linework.hpp"

#include <gtest/gtest.h>

#include <array>

namespace {

using mesh_import::Linework;

/// The pieces of joined lines, as x and y of their ends.
std::vector<std::array<double, 4>> joined(
    const std::vector<std::vector<mesh_import::Node>>& lines) {
  Linework linework(1e-3);
  for (const auto& line : lines) linework.add(line);
  linework.join();
  std::vector<std::array<double, 4>> pieces;
  for (const Linework::Piece& piece : linework.pieces()) {
    const auto &a = linework.points().at(static_cast<std::size_t>(piece.from)),
               &b = linework.points().at(static_cast<std::size_t>(piece.to));
    pieces.push_back({a.x, a.y, b.x, b.y});
  }
  return pieces;
}

using Pieces = std::vector<std::array<double, 4>>;

TEST(Linework, CutsLinesWhereTheyCross) {
  EXPECT_EQ(joined({{{0, 0, 0}, {4, 4, 0}}, {{0, 4, 0}, {4, 0, 0}}}),
            (Pieces{{0, 0, 2, 2}, {2, 2, 4, 4}, {0, 4, 2, 2}, {2, 2, 4, 0}}));
}

TEST(Linework, CutsALineWhereAnotherOneEndsOnIt) {
  EXPECT_EQ(joined({{{0, 0, 0}, {4, 0, 0}}, {{1, 0, 0}, {1, 3, 0}}}),
            (Pieces{{0, 0, 1, 0}, {1, 0, 4, 0}, {1, 0, 1, 3}}));
}

TEST(Linework, MovesALineToAnEndThatAllButTouchesIt) {
  EXPECT_EQ(joined({{{0, 0, 0}, {4, 0, 0}}, {{1, 0.0005, 0}, {1, 3, 0}}}),
            (Pieces{{0, 0, 1, 0.0005}, {1, 0.0005, 4, 0}, {1, 0.0005, 1, 3}}));
  EXPECT_EQ(joined({{{0, 0, 0}, {4, 0, 0}}, {{1, 0.002, 0}, {1, 3, 0}}}).size(), 2U);
}

TEST(Linework, SharesThePiecesOfLinesThatRunAlongEachOther) {
  EXPECT_EQ(joined({{{0, 0, 0}, {4, 0, 0}}, {{5, 0, 0}, {3, 0, 0}, {3, 1, 0}}}),
            (Pieces{{0, 0, 3, 0}, {3, 0, 4, 0}, {5, 0, 4, 0}, {4, 0, 3, 0}, {3, 0, 3, 1}}));
}

TEST(Linework, JoinsPointsThatAreDrawnTwice) {
  EXPECT_EQ(
      joined({{{0, 0, 0}, {4, 0, 0}, {4, 0.0005, 0}, {4, 4, 0}}, {{4.0004, 4, 0}, {0, 0, 0}}}),
      (Pieces{{0, 0, 4, 0}, {4, 0, 4, 4}, {4, 4, 0, 0}}));
}

TEST(Linework, MayLieAnywhere) {
  EXPECT_EQ(
      joined({{{5e5, 5.4e6, 0}, {500004, 5400004, 0}}, {{5e5, 5400004, 0}, {500004, 5.4e6, 0}}})
          .front(),
      (std::array<double, 4>{5e5, 5.4e6, 500002, 5400002}));
}

}  // namespace
