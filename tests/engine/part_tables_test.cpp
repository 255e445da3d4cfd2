// The tables of parts hold what those of the whole case hold for the same cells and edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>

#include "case/PartCutter.hpp"
#include "engine/Tables.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"
#include "support/strip_mesh.hpp"

namespace {

using cases::Number;
using engine::at;
using Numbers = std::vector<Number>;

constexpr int cells_of_a_patch = 64;

/// What tables hold of cells and edges, by the numbers in the whole case.
struct Contents {
  std::map<Number, std::vector<double>> cells;
  /// Cells that an edge has on its left and right, and its geometry.
  std::map<Number, std::array<double, 5>> edges;
  /// What the HLL schemes know of a cell, for itself or a patch beside it.
  std::map<Number, std::vector<double>> shapes;
};

class PartTables : public testing::Test {
 protected:
  cases::Case basin(const support::BasinOptions& options, cases::Scheme scheme) const {
    cases::Case contents = support::basin(options, folder_);
    contents.scheme = scheme;
    return contents;
  }

  /// Cells in an L, so that rings turn a corner.
  static Numbers cells_in_corner(const cases::Mesh& mesh) {
    Numbers cells;
    for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
      const physics::SpacePoint center = mesh.center_of(cell);
      if (center.x < 4.0 || center.y < 3.0) cells.push_back(cell);
    }
    return cells;
  }

  static void expect_same(const cases::Case& whole) {
    engine::ThreadTeam team(2);
    Numbers all(at(whole.mesh.n_cells()));
    for (std::size_t cell = 0; cell < all.size(); ++cell) all[cell] = static_cast<Number>(cell);
    const cases::Part part = cases::PartCutter(whole).part_of(cells_in_corner(whole.mesh),
                                                              cases::rings_of(whole.scheme));
    const engine::Tables tables = engine::make_tables(part, team, cells_of_a_patch);
    EXPECT_EQ(tables.place.size(), part.cell_number.size());
    EXPECT_EQ(tables.owned, part.owned);
    EXPECT_LT(part.cell_number.size(), all.size());
    const engine::Tables of_whole = engine::make_tables(whole, team, cells_of_a_patch);
    expect_within(contents_of(tables, part.cell_number, part.contents.scheme),
                  contents_of(of_whole, all, whole.scheme));
    EXPECT_EQ(tables.h0, of_whole.h0);
    EXPECT_EQ(tables.char_length_min, of_whole.char_length_min);
    EXPECT_EQ(tables.dry_step, of_whole.dry_step);
  }

  static void expect_within(const Contents& part, const Contents& whole) {
    EXPECT_EQ(part.edges.empty(), whole.edges.empty());
    EXPECT_EQ(part.shapes.empty(), whole.shapes.empty());
    for (const auto& [cell, values] : part.cells) EXPECT_EQ(values, whole.cells.at(cell)) << cell;
    for (const auto& [edge, values] : part.edges) EXPECT_EQ(values, whole.edges.at(edge)) << edge;
    for (const auto& [cell, values] : part.shapes) EXPECT_EQ(values, whole.shapes.at(cell)) << cell;
  }

  static Contents contents_of(const engine::Tables& tables, const Numbers& cell_number,
                              cases::Scheme scheme) {
    Numbers number_at(cell_number.size());
    for (std::size_t cell = 0; cell < cell_number.size(); ++cell) {
      number_at[at(tables.place[cell])] = cell_number[cell];
    }
    Contents contents;
    add_cells(tables, number_at, contents);
    if (tables.has_bed) add_edges(tables, number_at, contents);
    if (cases::is_hll(scheme)) add_shapes(tables, number_at, contents);
    return contents;
  }

  static void add_cells(const engine::Tables& tables, const Numbers& number_at,
                        Contents& contents) {
    const engine::CellTable& c = tables.cells;
    for (std::size_t place = 0; place < number_at.size(); ++place) {
      std::vector<double>& values = contents.cells[number_at[place]];
      for (const engine::Column* column :
           {&c.h, &c.qx, &c.qy, &c.eta, &c.bed, &c.max_node, &c.reciprocal_area, &c.char_length,
            &c.manning, &c.infiltrated, &c.hs, &c.rock}) {
        if (!column->empty()) values.push_back((*column)[place]);
      }
      if (!c.rain.empty()) values.push_back(c.rain[place]);
      if (!c.soil.empty()) values.push_back(c.soil[place]);
    }
  }

  static void add_edges(const engine::Tables& tables, const Numbers& number_at,
                        Contents& contents) {
    const engine::Patches& p = tables.patches;
    for (const engine::Patch& patch : p.patches) {
      for (int e = patch.edges.begin; e < patch.edges.end; ++e) {
        add_edge(p.edges, at(e), patch.cells.begin, p.edge_number[at(e)], number_at, contents);
      }
    }
    for (std::size_t e = 0; e < p.cut_edge_number.size(); ++e) {
      add_edge(p.cut_edges, e, 0, p.cut_edge_number[e], number_at, contents);
    }
  }
  template <class Index>
  static void add_edge(const engine::EdgeTable<Index>& edges, std::size_t e, int first_cell,
                       Number number, const Numbers& number_at, Contents& contents) {
    contents.edges[number] = {static_cast<double>(number_at[at(first_cell + edges.left[e])]),
                              static_cast<double>(number_at[at(first_cell + edges.right[e])]),
                              edges.nx[e], edges.ny[e], edges.length[e]};
  }

  static void add_shapes(const engine::Tables& tables, const Numbers& number_at,
                         Contents& contents) {
    using kernels::HllCellColumns;
    for (std::size_t p = 0; p < tables.hll->patches.size(); ++p) {
      const engine::HllPatch& patch = tables.hll->patches[p];
      const int first = tables.patches.patches[p].cells.begin;
      for (int k = 0; k < patch.with_states; ++k) {
        if (k >= patch.cells && k < patch.ring) continue;  // a gap
        const int place = k < patch.cells ? first + k : patch.around[at(k - patch.ring)];
        std::vector<double>& values = contents.shapes[number_at[at(place)]];
        values.clear();
        const int begin = kernels::hll_begin(k, tables.hll->numbers());
        for (int i = 0; i < tables.hll->numbers(); ++i) {
          values.push_back(patch.geometry[at(begin + i * kernels::hll_block)]);
        }
        if (!tables.hll->second_order) continue;
        const int weights = kernels::hll_begin(k, HllCellColumns::weights_per_cell);
        for (int i = 0; i < HllCellColumns::weights_per_cell; ++i) {
          values.push_back(patch.weights[at(weights + i * kernels::hll_block)]);
        }
      }
    }
  }

  const support::TemporaryFolder folder_;
};

}  // namespace

TEST_F(PartTables, HoldWhatThoseOfTheWholeHold) {
  expect_same(basin({}, cases::Scheme::lhllc));
  expect_same(basin({.sediments = true}, cases::Scheme::lhllc));
}

TEST_F(PartTables, HoldItForTheSchemesThatLookTwoCellsFar) {
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    expect_same(basin({}, scheme));
  }
  expect_same(basin({.sediments = true}, cases::Scheme::hll1));
}

TEST_F(PartTables, HoldTheSlopesOfABedFromAFile) {
  cases::Case contents = basin({}, cases::Scheme::hll2);
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    contents.fields.bed.push_back(0.01 * (cell % 11));
  }
  for (const cases::Scheme scheme : {cases::Scheme::hll1, cases::Scheme::hll2}) {
    contents.scheme = scheme;
    expect_same(contents);
  }
}

TEST_F(PartTables, HaveAPatchWithItsEdgesAndThoseToGhosts) {
  cases::Case contents;
  contents.mesh = support::strip_mesh(10);
  contents.zero_depth = 1e-3;
  contents.fields.level = contents.fields.qx = contents.fields.qy = std::vector<double>(10, 1.0);
  engine::ThreadTeam team(1);
  const cases::Part part = cases::PartCutter(contents).part_of(Numbers{3, 4, 5}, 1);
  const engine::Tables tables = engine::make_tables(part, team, cells_of_a_patch);
  EXPECT_EQ(tables.owned, 3);
  EXPECT_EQ(tables.ghosts().size(), 2);
  ASSERT_EQ(tables.patches.patches.size(), 1U);
  const engine::Patch& patch = tables.patches.patches.front();
  EXPECT_TRUE(patch.is_border);
  EXPECT_EQ(patch.edges.size(), 2);
  EXPECT_EQ(tables.patches.cut_edge_number.size(), 0U);  // nobody asks for it without sediments
  EXPECT_EQ(tables.cut_edges(), 2);
  // The files' order of the two cells, not that of the places.
  const Number cell_2 = 3, cell_3 = 0;  // in the part
  EXPECT_EQ(tables.patches.cut_edges.left[0], tables.place[cell_2]);
  EXPECT_EQ(tables.patches.cut_edges.right[0], tables.place[cell_3]);
  EXPECT_EQ(tables.boundaries.size(), 6U);  // the walls in the south and north
  const engine::Tables all = engine::make_tables(contents, team, cells_of_a_patch);
  EXPECT_FALSE(all.patches.patches.front().is_border);
}

TEST_F(PartTables, KnowTheirCellsByTheNumbersOfTheWhole) {
  cases::Case contents;
  contents.mesh = support::strip_mesh(10);
  contents.fields.level = contents.fields.qx = contents.fields.qy = std::vector<double>(10, 1.0);
  engine::ThreadTeam team(1);
  const cases::Part part = cases::PartCutter(contents).part_of(Numbers{3, 5, 8}, 1);
  const engine::Tables tables = engine::make_tables(part, team);
  EXPECT_EQ(tables.number_of(1), 5);
  EXPECT_EQ(tables.cell_of(8), 2);
  for (const Number other : {0, 4, 9}) EXPECT_EQ(tables.cell_of(other), -1) << other;
  const engine::Tables all = engine::make_tables(contents, team);
  EXPECT_EQ(all.number_of(5), 5);
  EXPECT_EQ(all.cell_of(5), 5);
}

TEST_F(PartTables, PutTheCellsOfALowerBandFirst) {
  const cases::Case whole = basin({}, cases::Scheme::lhllc);
  engine::ThreadTeam team(2);
  cases::Part part =
      cases::PartCutter(whole).part_of(cells_in_corner(whole.mesh), cases::rings_of(whole.scheme));
  for (Number cell = 0; cell < part.owned; ++cell) {
    part.band.push_back(static_cast<std::uint8_t>(cell % 3));
  }
  const engine::Tables tables = engine::make_tables(part, team, cells_of_a_patch);
  std::vector<int> bands(at(part.owned));
  for (std::size_t cell = 0; cell < bands.size(); ++cell) {
    bands[at(tables.place[cell])] = part.band[cell];
  }
  // Patch by patch: within one they are swept together.
  for (auto patch = bands.begin(); bands.end() - patch > cells_of_a_patch;) {
    const auto next = patch + cells_of_a_patch;
    EXPECT_LE(*std::max_element(patch, next), *std::min_element(next, bands.end()));
    patch = next;
  }
}
