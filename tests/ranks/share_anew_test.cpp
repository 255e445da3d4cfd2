#include "ranks/share_anew.hpp"

#include <gtest/gtest.h>

#include <random>

#include "case/entries_of.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/on_ranks.hpp"

using namespace test_ranks;

namespace {

class ShareAnew : public PartsOfCourse {
 protected:
  std::vector<ranks::Cells> random_cells(const cases::Case& contents, int ranks) {
    std::vector<ranks::Cells> cells(at(ranks));
    for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      // Runs, and some cells anywhere: with neighbours on the same rank, and without any.
      const bool is_anywhere = random_() % 10 == 0;
      const int in_its_run = cell * ranks / contents.mesh.n_cells();
      cells[is_anywhere ? random_() % cells.size() : at(in_its_run)].push_back(cell);
    }
    return cells;
  }

  template <class Value>
  static utils::Bytes bytes_of(const Value& value) {
    utils::Bytes bytes;
    utils::put_into(bytes, value);
    return bytes;
  }

  /// Drops edges between two ghosts, which the part of a rank may lack, from what is compared.
  struct KnownEdges {
    std::vector<Number> edges, left, right, node1, node2, boundaries;

    explicit KnownEdges(const cases::Part& part) {
      const cases::Mesh& mesh = part.contents.mesh;
      for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
        const Number of_left = mesh.left[at(edge)], of_right = mesh.right[at(edge)];
        if (of_left >= part.owned && of_right >= part.owned) continue;
        edges.push_back(part.edge_number[at(edge)]);
        left.push_back(of_left);
        right.push_back(of_right);
        node1.push_back(part.node_number[at(mesh.node1[at(edge)])]);
        node2.push_back(part.node_number[at(mesh.node2[at(edge)])]);
      }
      for (const cases::Boundary& boundary : mesh.boundaries) {
        boundaries.push_back(part.edge_number[at(boundary.edge)]);
        boundaries.push_back(boundary.code);
        boundaries.push_back(boundary.series);
      }
    }
    bool operator==(const KnownEdges&) const = default;
  };

  static void expect_same(const ranks::Share& found, const ranks::Share& expected) {
    const cases::Part &part = found.part, &other = expected.part;
    EXPECT_EQ(part.owned, other.owned);
    EXPECT_EQ(part.cell_number, other.cell_number);
    EXPECT_EQ(part.node_number, other.node_number);
    EXPECT_EQ(part.boundary_number, other.boundary_number);
    EXPECT_EQ(part.border, other.border);
    EXPECT_TRUE(bytes_of(part.scales) == bytes_of(other.scales));
    EXPECT_TRUE(bytes_of(found.halos) == bytes_of(expected.halos));
    EXPECT_TRUE(KnownEdges(part) == KnownEdges(other));
    cases::Case without_edges = part.contents, expected_without = other.contents;
    for (cases::Case* contents : {&without_edges, &expected_without}) {
      cases::Mesh& mesh = contents->mesh;
      for (auto* column : {&mesh.left, &mesh.right, &mesh.node1, &mesh.node2}) column->clear();
      for (cases::Boundary& boundary : mesh.boundaries) boundary.edge = 0;
    }
    EXPECT_TRUE(bytes_of(without_edges) == bytes_of(expected_without));
  }

  std::mt19937 random_{3};
};

}  // namespace

TEST_F(ShareAnew, MakesThePartsThatAreCutOutOfTheWholeCase) {
  for (const auto scheme : {cases::Scheme::lhllc, cases::Scheme::hll2}) {
    cases::Case contents = basin({});
    contents.scheme = scheme;
    for (const int count : {2, 5}) {
      std::vector<std::vector<ranks::Share>> courses;  // one cut after the other
      std::vector<std::vector<int>> owners;
      for (int k = 0; k < 4; ++k) {
        const std::vector<ranks::Cells> cells = random_cells(contents, count);
        courses.push_back(shares_of(contents, cells));
        owners.push_back(ranks::owners_of(cells));
      }
      on_ranks(count, [&](ranks::Group& group) {
        ranks::Share share = courses.front()[at(group.rank())];
        for (std::size_t k = 1; k < courses.size(); ++k) {
          const std::vector<int> next = cases::entries_of(owners[k], share.part.cell_number);
          share = ranks::share_anew(group, share.part, next);
          expect_same(share, courses[k][at(group.rank())]);
        }
      });
    }
  }
}
