// Runs on several ranks, which are threads of this process, leave the files of a run on one, byte
// for byte: results, report, log, console and checkpoints.
#include <vector>

#include "case/write_case.hpp"
#include "checkpoint/RestartTest.hpp"
#include "ranks/DelayedGroup.hpp"
#include "ranks/as_first_of.hpp"
#include "ranks/uneven_parts.hpp"
#include "support/mixed_grid.hpp"

using namespace test_restart;

namespace {

class RunOnRanks : public Restart {
 protected:
  struct Ranks {
    int count;
    bool is_uneven = false, is_late = false;
    bool have_report = true;  ///< which asks after every step
    bool read_together = false;
  };

  long run_on(const Ranks& how, const support::TemporaryFolder& folder,
              std::optional<long> stop = {}, int threads = 1) {
    test_ranks::OtherRanks others{how.count};
    if (how.is_late) {
      others.changed = [](std::unique_ptr<ranks::Group> group) -> std::unique_ptr<ranks::Group> {
        return std::make_unique<test_ranks::DelayedGroup>(std::move(group), 5);
      };
    }
    long steps = 0;
    test_ranks::as_first_of(others, [&](ranks::Group& group) {
      fields::FlowRequest machine{.most_threads = threads};
      machine.ranks.group = &group;
      machine.ranks.can_read_files = how.read_together;
      machine.ranks.largest_text = 10001;  // some rows of a rank, and a piece of one
      if (how.is_uneven) machine.ranks.cut = test_ranks::uneven_parts;
      steps = run(folder, stop, machine, how.have_report);
    });
    return steps;
  }

  /// All files, checkpoints and log among them, but for what tells calls apart.
  static std::map<std::string, std::string> all_of(const support::TemporaryFolder& folder) {
    std::map<std::string, std::string> files = files_of(folder);
    files.at("report.json") = results_of(folder).at("report.json");
    return files;
  }
  static nlohmann::json execution_in(const support::TemporaryFolder& folder) {
    return nlohmann::json::parse(folder.read("report.json")).at("execution");
  }

  void expect_the_same_on_ranks(const Case& c) {
    const support::TemporaryFolder alone;
    c.write(alone);
    const long steps = run(alone, {}, {});
    EXPECT_GT(steps, 50);
    const auto expected = all_of(alone);
    ASSERT_TRUE(expected.count("kept.a"));
    std::vector<Ranks> numbers = {Ranks{3, true}, Ranks{5, false, true}};
#ifndef QUILLMERE_SANITIZED  // which slow them down
    for (const int count : {1, 2, 7}) numbers.push_back({count});
#endif
    for (const Ranks& how : numbers) {
      const support::TemporaryFolder folder;
      c.write(folder);
      EXPECT_EQ(run_on(how, folder), steps);
      EXPECT_EQ(execution_in(folder).at("ranks"), how.count);
      const auto files = all_of(folder);
      ASSERT_EQ(files.size(), expected.size());
      for (const auto& [name, text] : expected) {
        EXPECT_TRUE(files.at(name) == text) << name << " on " << how.count << " ranks";
      }
    }
  }
};

}  // namespace

TEST_F(RunOnRanks, OfWaterWithEverythingLeavesTheSameFiles) {
  expect_the_same_on_ranks(water_case());
}

TEST_F(RunOnRanks, OfSandWithEverythingLeavesTheSameFiles) {
  expect_the_same_on_ranks(sand_case());
}

TEST_F(RunOnRanks, OfThePositiveSchemesLeavesTheSameFiles) {
  for (const char* const scheme : {"HLL2", "HLL1"}) {
    Case c = water_case();
    c.data["model"]["flux scheme"] = scheme;
    expect_the_same_on_ranks(c);
  }
  Case sand = sand_case();
  sand.data["model"]["flux scheme"] = "HLL1";
  expect_the_same_on_ranks(sand);
}

TEST_F(RunOnRanks, LeavesTheSameFilesWhereRanksStepWithoutOrders) {
  for (const Case& c : {water_case(), sand_case()}) {
    const support::TemporaryFolder alone;
    c.write(alone);
    constexpr bool has_report = false;
    const long steps = run(alone, {}, {}, has_report);
    const auto expected = files_of(alone);
    for (const Ranks& how : {Ranks{3, false, false, false}, Ranks{5, true, true, false}}) {
      const support::TemporaryFolder folder;
      c.write(folder);
      EXPECT_EQ(run_on(how, folder), steps);
      const auto files = files_of(folder);
      ASSERT_EQ(files.size(), expected.size());
      for (const auto& [name, text] : expected) {
        EXPECT_TRUE(files.at(name) == text) << name << " on " << how.count << " ranks";
      }
    }
  }
}

namespace {

/// Ranks that have begun the next step finish it before they stop.
void expect_stop_at(long asked, long steps) {
  EXPECT_GE(steps, asked);
  EXPECT_LE(steps, asked + 1);
}

}  // namespace

TEST_F(RunOnRanks, GoesOnOnAnyOtherNumberOfRanks) {
  for (Case c : {water_case(), sand_case()}) {
    run_whole(c);
    struct Calls {
      long stop;
      Ranks first, second;
    };
    for (const Calls& calls : {Calls{0, {3}, {2}}, Calls{30, {2}, {3}}, Calls{61, {5, true}, {1}},
                               Calls{44, {1}, {4, true}}}) {
      const support::TemporaryFolder folder;
      c.write(folder);
      expect_stop_at(calls.stop, run_on(calls.first, folder, calls.stop));
      EXPECT_EQ(run_on(calls.second, folder), steps_);
      expect_whole_results(folder, "stopped at step " + std::to_string(calls.stop));
    }
  }
}

TEST_F(RunOnRanks, GoesOnWhereRanksReadTheCaseTogether) {
  for (Case c : {water_case(), sand_case()}) {
    const support::TemporaryFolder alone;
    c.write(alone);
    run(alone, {}, {});
    const auto expected = all_of(alone);
    run_whole(c);
    const Ranks three{.count = 3, .read_together = true};
    const Ranks two{.count = 2, .is_late = true, .read_together = true};
    const support::TemporaryFolder at_once;
    c.write(at_once);
    EXPECT_EQ(run_on(three, at_once), steps_);
    EXPECT_TRUE(all_of(at_once) == expected);
    for (const auto& [first, second] :
         {std::pair(three, two), std::pair(two, Ranks{1}), std::pair(Ranks{1}, three)}) {
      const support::TemporaryFolder folder;
      c.write(folder);
      expect_stop_at(33, run_on(first, folder, 33));
      EXPECT_EQ(run_on(second, folder), steps_);
      expect_whole_results(folder, "stopped at step 33");
    }
  }
}

namespace {

/// Triangles and squares from whose coordinates an origin was taken, with results in NetCDF.
void write_mixed_case(int nx, int ny, bool has_bed, const support::TemporaryFolder& folder) {
  cases::Case contents = support::mixed_grid(nx, ny);
  contents.t_end = 1.0;
  contents.mesh.x.push_back(-5.0);  // of no cell
  contents.mesh.y.push_back(3.0);
  contents.mesh.z.push_back(0.7);
  for (cases::Number cell = 0; has_bed && cell < contents.mesh.n_cells(); ++cell) {
    contents.fields.bed.push_back(0.3 * std::sin(cell));
  }
  cases::RunRequest asked;
  asked.name = "mixed";
  asked.output_folder = "out/";
  asked.envelope_interval = 0.5;
  asked.origin = {423000.3, 5170000.7};
  cases::write_case(contents, asked, [&](const std::string& name, const std::string& text) {
    folder.write(name, text);
  });
  nlohmann::json data = nlohmann::json::parse(folder.read("data.json"));
  data["output"]["results"] = "results.nc";
  data["output"]["results times"] = "times.txt";
  folder.write("times.txt", "3 0 0.4 1");
  folder.write("data.json", data.dump());
  fs::create_directory(folder.file("out"));
}

}  // namespace

TEST_F(RunOnRanks, ListsAMeshOfAnyCellsThatNoRankHas) {
  struct Size {
    int nx, ny;
    bool has_bed;
  };
  for (const Size& size : {Size{13, 9, true}, Size{13, 9, false}, Size{1, 1, true}}) {
    const auto write = [&](const support::TemporaryFolder& folder) {
      write_mixed_case(size.nx, size.ny, size.has_bed, folder);
    };
    const support::TemporaryFolder alone;
    write(alone);
    run(alone, {}, {});
    const auto expected = all_of(alone);
    ASSERT_TRUE(expected.count("out/results.nc"));
    for (const int count : {2, 3, 5, 7}) {
      const support::TemporaryFolder folder;
      write(folder);
      run_on({.count = count, .is_late = count == 3, .read_together = true}, folder);
      EXPECT_TRUE(all_of(folder) == expected) << count << " ranks, " << size.nx;
    }
  }
}

TEST_F(RunOnRanks, BeginsOtherResultsWhereItGoesOn) {
  Case c = sand_case();
  const auto files_with = [&](const Ranks& how) {
    const support::TemporaryFolder folder;
    c.data["output"]["results"] = "results.nc";
    c.write(folder);
    run_on(how, folder, 33);
    c.data["output"]["results"] = "more.nc";
    c.write(folder);
    run_on(how, folder);
    return all_of(folder);
  };
  const auto expected = files_with({1});
  ASSERT_TRUE(expected.count("out/results.nc"));
  ASSERT_TRUE(expected.count("out/more.nc"));
  for (const int count : {2, 5}) {
    EXPECT_TRUE(files_with({.count = count, .read_together = true}) == expected) << count;
  }
}

TEST_F(RunOnRanks, GoesOnOnTheObjectsAndFromThem) {
  const Case c = sand_case();
  run_whole(c);
  const support::TemporaryFolder folder;
  c.write(folder);
  run_on({3}, folder, 25);
  run(folder, 50, {.path = "objects"});
  run_on({2}, folder);
  expect_whole_results(folder, "on ranks, objects and ranks");
}

TEST_F(RunOnRanks, LeavesRanksWithoutCellsOut) {
  Case c = support::full_case(1, 1);  // of two cells
  const support::TemporaryFolder alone, folder;
  c.write(alone);
  c.write(folder);
  run(alone, {}, {});
  run_on({5}, folder);
  EXPECT_EQ(execution_in(folder).at("ranks"), 2);
  EXPECT_EQ(all_of(folder), all_of(alone));
}
