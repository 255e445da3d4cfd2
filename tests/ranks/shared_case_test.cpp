// A case that ranks have read together, none of them all of it, is to a run what a whole one is.
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>

#include "fields/Clock.hpp"
#include "fields/make_flow.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/SplitReading.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/kept.hpp"
#include "ranks/on_ranks.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/TriangleGrid.hpp"
#include "support/mixed_grid.hpp"
#include "support/polygon_mesh.hpp"

using namespace test_ranks;

namespace {

class SharedCaseTest : public PartsOfCourse {
 protected:
  /// Calls body(shared, contents, request) on rank 0 of several, who have read a case; `contents`
  /// has no mesh.
  template <class Body>
  void with_shared(int count, const std::string& data_file, const Body& body) {
    as_first_of({count}, [&](ranks::Group& group) {
      std::ostringstream nowhere;
      utils::Console console(nowhere);
      fields::SharedCase shared(group, data_file, {nowhere, console}, told_);
      cases::ReadCase read = shared.take_case();
      EXPECT_TRUE(read.contents.mesh.x.empty());
      EXPECT_TRUE(read.contents.mesh.left.empty());
      EXPECT_TRUE(read.contents.fields.level.empty());
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
      request.ranks.shared = &shared;
      body(shared, read, request);
    });
  }
  /// The basin with boundaries that its model can read from files.
  std::string basin_in_files(const Options& options) {
    cases::Case contents = basin(options);
    contents.series.clear();
    for (cases::Boundary& boundary : contents.mesh.boundaries) {
      if (boundary.series < 0) continue;
      const bool is_level = boundary.code == edge_code::limnigraph;
      boundary = {boundary.edge, is_level ? edge_code::water_level : edge_code::discharge,
                  is_level ? 0.7 : 0.1, -1};
    }
    return write_case(contents, files_);
  }

  support::TemporaryFolder files_;
  support::Told told_;
};

std::vector<physics::PlanPoint> some_points(const cases::Mesh& mesh) {
  std::mt19937 random(3);
  std::vector<physics::PlanPoint> points = {{-1e3, 0.0}, {1e9, 1e9}};
  for (std::size_t k = 0; k < 40; ++k) {
    const auto node = [&] { return static_cast<Number>(random() % mesh.x.size()); };
    const physics::PlanPoint a = mesh.plan_node(node()), b = mesh.plan_node(node());
    points.push_back({0.5 * (a.x + b.x), 0.5 * (a.y + b.y)});
    points.push_back({0.7 * a.x + 0.3 * b.x, 0.69 * a.y + 0.31 * b.y});
    points.push_back(a);
  }
  return points;
}

void expect_same_ground(const fields::Ground& ground, const cases::Case& whole) {
  const fields::WholeGround expected(whole);
  const fields::MeshCounts counts = expected.counts();
  EXPECT_EQ(ground.counts().nodes, counts.nodes);
  EXPECT_EQ(ground.counts().cells, counts.cells);
  EXPECT_EQ(ground.counts().edges, counts.edges);
  for (Number cell = 0; cell < counts.cells; cell += 1 + counts.cells / 20) {
    const cases::CellGeometry a = ground.geometry_of(cell), b = expected.geometry_of(cell);
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0) << cell;
    const Number asked[] = {cell, counts.cells / 2};
    EXPECT_TRUE(bytes_that_are(ground.around(asked)) == bytes_that_are(expected.around(asked)));
  }
  std::vector<Number> edges = {counts.edges - 1, 0, counts.edges / 2, 0};
  for (Number edge = 3; edge < counts.edges; edge += 7) edges.push_back(edge);
  EXPECT_TRUE(bytes_that_are(ground.edges(edges)) == bytes_that_are(expected.edges(edges)));
  EXPECT_TRUE(ground.edges({}).empty());
  const auto points = some_points(whole.mesh);
  const std::vector<Number> cells = ground.cells_at(points);
  EXPECT_EQ(cells, expected.cells_at(points));
  EXPECT_GT(std::count_if(cells.begin(), cells.end(), [](Number cell) { return cell >= 0; }), 20);
  EXPECT_LT(cells[0], 0);
}

}  // namespace

TEST_F(SharedCaseTest, HasTheGroundOfAWholeOneBeforeAndAfterItsFlowIsMade) {
  cases::Case polygons = support::mixed_grid(13, 9);
  polygons.fields.manning.assign(at(polygons.mesh.n_cells()), 0.0);
  for (std::size_t k = 0; k < polygons.fields.manning.size(); ++k) {
    polygons.fields.manning[k] = 0.01 + 0.0001 * static_cast<double>(k);
  }
  for (const bool has_polygons : {false, true}) {
    const std::string data_file =
        has_polygons ? write_case(polygons, files_) : basin_in_files({.sediments = true});
    const WholeReading whole(data_file);
    ASSERT_EQ(whole.told().status, 0) << whole.told();
    for (const int count : {2, 3, 5}) {
      with_shared(count, data_file, [&](auto& shared, auto& read, const auto& request) {
        expect_same_ground(*shared.ground(), whole.contents());
        const cases::InputSums sums = cases::input_sums_of(whole.contents());
        EXPECT_EQ(std::memcmp(&shared.input_sums(), &sums, sizeof sums), 0);
        const auto flow = fields::make_flow(read.contents, told_, request);
        expect_same_ground(*flow->ground(read.contents), whole.contents());
      });
    }
  }
}

namespace {

/// Lets a case ask for results that list its mesh.
void ask_for_results(const std::string& data_file) {
  std::ifstream before(data_file);
  nlohmann::json data = nlohmann::json::parse(before);
  data["output"]["results"] = "results.nc";
  data["output"]["results times"] = "times.txt";
  std::ofstream(data_file) << data;
}

template <class Value>
void append(std::vector<Value>& to, const std::vector<Value>& values) {
  to.insert(to.end(), values.begin(), values.end());
}

/// All rows as one; they follow each other.
cases::MeshRows all_rows_of(fields::ListedMesh& mesh) {
  cases::MeshRows all;
  all.width = mesh.width();
  while (const auto rows = mesh.next()) {
    EXPECT_EQ(rows->first_node, all.n_nodes());
    EXPECT_EQ(rows->first_cell, all.n_cells());
    EXPECT_EQ(rows->width, all.width);
    for (const auto column :
         {&cases::MeshRows::node_x, &cases::MeshRows::node_y, &cases::MeshRows::node_bed,
          &cases::MeshRows::cell_x, &cases::MeshRows::cell_y, &cases::MeshRows::cell_bed}) {
      append(all.*column, *rows.*column);
    }
    append(all.cell_nodes, rows->cell_nodes);
  }
  return all;
}

}  // namespace

TEST_F(SharedCaseTest, ListsTheMeshOfAWholeOne) {
  for (const bool has_polygons : {false, true}) {
    const std::string data_file = has_polygons ? write_case(support::mixed_grid(13, 9), files_)
                                               : basin_in_files({.sediments = true});
    ask_for_results(data_file);
    const WholeReading whole(data_file);
    ASSERT_EQ(whole.told().status, 0) << whole.told();
    fields::WholeListedMesh expected(whole.contents(), {0.0, 0.0});
    const auto rows = expected.next();
    EXPECT_FALSE(expected.next());
    ASSERT_EQ(rows->n_cells(), at(whole.contents().mesh.n_cells()));
    for (const int count : {2, 3, 5}) {
      with_shared(count, data_file, [&](auto& shared, auto& read, const auto& request) {
        const auto mesh = shared.listed_mesh();
        EXPECT_EQ(mesh->counts().nodes, whole.contents().mesh.n_nodes());
        EXPECT_TRUE(bytes_that_are(all_rows_of(*mesh)) == bytes_that_are(*rows)) << count;
        EXPECT_FALSE(mesh->next());
        EXPECT_EQ(fields::make_flow(read.contents, told_, request)->execution_path().ranks, count);
      });
    }
  }
}

TEST_F(SharedCaseTest, KeepsNoListOfItsMeshThatNobodyAskedFor) {
  const std::string data_file = basin_in_files({.sediments = true});
  const auto cells_listed_on = [&](int rank) {
    std::size_t cells = 0;
    on_ranks(3, [&](ranks::Group& group) {
      told_by([&](const auto& listeners, auto& diagnostics) {
        const auto read = ranks::read_share(group, data_file, listeners, diagnostics);
        if (group.rank() == rank) cells = read.mesh_rows.n_cells();
      });
    });
    return cells;
  };
  EXPECT_EQ(cells_listed_on(0), 0U);
  EXPECT_EQ(cells_listed_on(2), 0U);
  ask_for_results(data_file);
  EXPECT_GT(cells_listed_on(2), 0U);
}

TEST_F(SharedCaseTest, FlowsOnAsAWholeOne) {
  constexpr int steps = 15;
  support::TriangleGrid grid{.nx = 17, .ny = 11, .seed = 4, .bed_by_file = true};
  grid.west = {edge_code::discharge, -0.3};
  grid.level = [](double x, double) { return x < 6.0 ? 1.2 : 0.4; };
  for (const bool is_hll : {false, true}) {
    const std::string data_file =
        is_hll ? write_case(grid.make(), files_) : basin_in_files({.sediments = false});
    const WholeReading whole(data_file);
    const auto alone = fields::make_flow(whole.contents(), told_);
    alone->watch();
    const auto looks_alone = alone->looks(whole.contents());
    fields::Clock expected = fields::clock_at_start(whole.contents(), *alone);
    for (int step = 0; step < steps; ++step) fields::advance(*alone, whole.contents(), expected);
    const engine::State expected_state = state_of(*alone);
    const Number some[] = {whole.contents().mesh.n_cells() - 1, 0, 17, 0};
    double expected_depths[4];
    alone->read(fields::Field::depth, some, expected_depths);
    for (const int count : {2, 5}) {
      with_shared(count, data_file, [&](auto&, auto& read, const auto& request) {
        const auto flow = fields::make_flow(read.contents, told_, request);
        EXPECT_EQ(flow->execution_path().ranks, count);
        EXPECT_EQ(flow->scales().h0, alone->scales().h0);
        flow->watch();
        const auto looks = flow->looks(read.contents);
        fields::Clock clock = fields::clock_at_start(read.contents, *flow);
        for (int step = 0; step < steps; ++step) fields::advance(*flow, read.contents, clock);
        EXPECT_EQ(clock.t, expected.t);
        EXPECT_EQ(clock.dt, expected.dt);
        double depths[4];
        flow->read(fields::Field::depth, some, depths);
        EXPECT_TRUE(std::equal(depths, depths + 4, expected_depths));
        for (const Number cell : some) {
          EXPECT_EQ(flow->state(cell).h, alone->state(cell).h);
          EXPECT_EQ(flow->state(cell).qx, alone->state(cell).qx);
        }
        const engine::State state = state_of(*flow);
        EXPECT_TRUE(have_same_bits(state, expected_state));
        load(*flow, state);
        EXPECT_EQ(looks->volumes().water.value(), looks_alone->volumes().water.value());
        EXPECT_EQ(looks->bounds().slowest, looks_alone->bounds().slowest);
      });
    }
  }
}

TEST_F(SharedCaseTest, HasAsManyRanksAsCellsAtMost) {
  const std::string data_file = write_case(support::mixed_grid(1, 1), files_);
  const WholeReading whole(data_file);
  const auto cells = whole.contents().mesh.n_cells();
  const auto alone = fields::make_flow(whole.contents(), told_);
  with_shared(cells + 2, data_file, [&](auto& shared, auto& read, const auto& request) {
    EXPECT_EQ(shared.counts().cells, cells);
    const auto flow = fields::make_flow(read.contents, told_, request);
    EXPECT_EQ(flow->execution_path().ranks, cells);
    EXPECT_EQ(flow->stable_step(0.0), alone->stable_step(0.0));
  });
}

TEST_F(SharedCaseTest, WarnsOfWhatIsImplausibleAsAWholeOne) {
  cases::Case contents = basin({.sediments = false});
  contents.series.clear();
  int outflows = 0;
  for (cases::Boundary& boundary : contents.mesh.boundaries) {
    const double value = ++outflows % 4 == 0 ? 0.5 : 0.25;
    boundary = {boundary.edge, edge_code::discharge, value, -1};
  }
  const std::size_t cells = at(contents.mesh.n_cells());
  contents.fields.manning.assign(cells, 0.03);
  contents.fields.infiltrated.assign(cells, 0.0);
  contents.has_infiltration = true;
  for (const std::size_t cell : {30, 400, 401}) contents.fields.manning[cell] = 30.0;
  contents.fields.manning[5] = -1.0;
  for (const std::size_t cell : {11, 500}) contents.fields.infiltrated[cell] = -0.5;
  for (const std::size_t cell : {12, 600, 601}) contents.fields.infiltrated[cell] = 200.0;
  for (double& level : contents.fields.level) level = -1e3;
  const std::string data_file = write_case(contents, files_);
  const WholeReading whole(data_file);
  ASSERT_EQ(whole.told().status, 0) << whole.told();
  for (const int count : {2, 3, 5}) {
    with_shared(count, data_file, [&](auto& shared, auto& read, const auto&) {
      support::Told expected, told;
      cases::warn_of_implausible_fields(cases::implausible_fields(whole.contents()),
                                        whole.contents(), read.data, read.area_loss, expected);
      cases::warn_of_implausible_fields(shared.implausible(), read.contents, read.data,
                                        read.area_loss, told);
      EXPECT_EQ(told.warnings, expected.warnings);
      EXPECT_GE(expected.warnings.size(), 4U);
    });
  }
}

namespace {

/// What making a flow ends with; empty: there is one.
std::string refusal_of(const cases::Case& contents, support::Told& told,
                       const fields::FlowRequest& request = {}) {
  try {
    fields::make_flow(contents, told, request);
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

std::string without_line_end(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace

TEST_F(SharedCaseTest, IsRefusedByASchemeInTheWordsOfOneRank) {
  const auto expect_refusal = [&](const cases::Case& contents, const std::string& words) {
    const std::string data_file = write_case(contents, files_);
    const WholeReading whole(data_file);
    ASSERT_EQ(whole.told().status, 0) << whole.told();
    const std::string expected = refusal_of(whole.contents(), told_);
    EXPECT_NE(expected.find(words), std::string::npos) << expected;
    for (const int count : {2, 3, 5}) {
      with_shared(count, data_file, [&](auto&, auto& read, const auto& request) {
        EXPECT_EQ(without_line_end(refusal_of(read.contents, told_, request)), expected) << count;
      });
    }
  };
  const support::TriangleGrid grid{.nx = 9, .ny = 7, .seed = 4};
  cases::Case polygons = support::mixed_grid(13, 9);
  polygons.scheme = cases::Scheme::hll1;
  expect_refusal(polygons, "takes triangles alone, and cell ");

  cases::Case twice = grid.make();
  const auto add_edge_again = [&](Number edge) {
    cases::Mesh& mesh = twice.mesh;
    const Number left = mesh.left[at(edge)], right = mesh.right[at(edge)];
    const Number node1 = mesh.node1[at(edge)], node2 = mesh.node2[at(edge)];
    if (const auto* boundary = mesh.boundary_on(edge)) {
      mesh.boundaries.push_back(*boundary);
      mesh.boundaries.back().edge = mesh.n_edges();
    }
    mesh.left.push_back(left);
    mesh.right.push_back(right);
    mesh.node1.push_back(node1);
    mesh.node2.push_back(node2);
  };
  add_edge_again(100);
  add_edge_again(7);
  expect_refusal(twice, " lies at the same side");

  cases::Case elsewhere = grid.make();
  for (const Number edge : {120, 60}) {
    Number& right = elsewhere.mesh.right[at(edge)];
    if (right >= 0) right = right == 50 ? 51 : 50;
  }
  expect_refusal(elsewhere, "the edge is no side of the cell");

  cases::Case rain = grid.make();
  rain.rain.push_back({1, 0, {0.0}, {-1e-5}});
  rain.fields.rain.assign(at(rain.mesh.n_cells()), 0);
  expect_refusal(rain, "takes no rain below zero, as hyetogram 1 has it");
}

TEST_F(SharedCaseTest, LeavesTheRanksReadyWhereItIsRefused) {
  const std::string data_file = basin_in_files({.sediments = false});
  const WholeReading whole(data_file);
  const WholeReading missing(files_.file("nowhere.json"));
  as_first_of({3}, [&](ranks::Group& group) {
    const Told told = told_by([&](const auto& listeners, auto& diagnostics) {
      fields::SharedCase(group, files_.file("nowhere.json"), listeners, diagnostics);
    });
    EXPECT_EQ(told, missing.told());
    const Told good = told_by([&](const auto& listeners, auto& diagnostics) {
      fields::SharedCase(group, data_file, listeners, diagnostics);
    });
    EXPECT_EQ(good, whole.told());
    EXPECT_EQ(good.status, 0);
  });
}

TEST_F(SharedCaseTest, GivesTheObjectsAllOfItsMeshWhereTheTablesHaveNoRoom) {
#ifdef QUILLMERE_SANITIZED
  GTEST_SKIP() << "all edges ask for the centre of a cell of 66,000 nodes, which takes minutes";
#endif
  const support::RunGlobals globals(1e-3);  // objects set them
  cases::Case contents;
  contents.mesh = support::polygon_mesh(66000);
  contents.zero_depth = 1e-3;
  contents.cfl = 0.9;
  contents.t_end = 1.0;
  contents.fields.level = contents.fields.qx = contents.fields.qy = {0.0};
  const std::string data_file = write_case(contents, files_);
  const WholeReading whole(data_file);
  ASSERT_EQ(whole.told().status, 0) << whole.told();
  with_shared(2, data_file, [&](auto&, auto& read, fields::FlowRequest request) {
    int fetched = 0;
    request.fetch_mesh = [&] {
      ++fetched;
      read.contents.mesh = whole.contents().mesh;
      read.contents.fields = whole.contents().fields;
    };
    const auto flow = fields::make_flow(read.contents, told_, request);
    EXPECT_EQ(fetched, 1);
    EXPECT_STREQ(flow->execution_path().name, "objects");
  });
}
