// Tables that several ranks make rows of are those of one, byte for byte.
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>
#include <functional>

#include "fields/make_flow.hpp"
#include "output/CPicture.hpp"
#include "output/MaximaFile.hpp"
#include "output/Snapshot.hpp"
#include "ranks/DelayedGroup.hpp"
#include "ranks/OnMachines.hpp"
#include "ranks/PartsOfCourse.hpp"
#include "ranks/as_first_of.hpp"
#include "support/Told.hpp"
#include "support/text.hpp"

using namespace test_ranks;

namespace {

class RowsOfRanks : public PartsOfCourse {
 protected:
  /// All tables of a few steps, in their order.
  std::vector<std::string> written_by(const cases::Case& contents,
                                      const fields::FlowRequest& request) {
    const support::TemporaryFolder to;
    const auto flow = fields::make_flow(contents, told_, request);
    flow->keep_maxima(arrival_depth);
    CPicture pictures({{0.0, 1.0, 2.0}}, to.path() + "/", contents);
    MaximaFile maxima(to.file("maxima.txt"), contents.mesh);
    std::vector<std::string> tables;
    for (int step = 0; step < 5; ++step) {
      if (pictures.CheckTime(step, 0.0)) pictures.WriteMeasure(*flow);
      if (step % 2 == 0) maxima.WriteMeasure(*flow, 1e-4 * step);
      flow->advance({1e-4 * step, 0.0, t_end, 1e-4});
      utils::go_on_with_writers();
    }
    Snapshot last(contents);
    last.gather(*flow);
    EXPECT_TRUE(last.write(to.file("last.txt")));
    pictures.wait();
    maxima.wait();
    EXPECT_FALSE(pictures.has_failed() || maxima.has_failed());
    for (const auto& entry : std::filesystem::directory_iterator(to.path())) {
      const std::string name = entry.path().filename().string();
      tables.push_back(name + '\n' + to.read(name));
    }
    std::sort(tables.begin(), tables.end());
    return tables;
  }

  static OtherRanks late_on_machines(const std::vector<int>& first_on_machine) {
    OtherRanks others{static_cast<int>(first_on_machine.size())};
    others.changed = [first_on_machine](std::unique_ptr<ranks::Group> group) {
      return std::make_unique<DelayedGroup>(
          std::make_unique<OnMachines>(std::move(group), first_on_machine), 5);
    };
    return others;
  }

  void expect_same(const cases::Case& contents) {
    const std::vector<std::string> expected = written_by(contents, {.most_threads = 1});
    EXPECT_EQ(expected.size(), 5U);
    for (const int count : {2, 3, 5, 7}) {
      OtherRanks others{count};
      others.changed = [](std::unique_ptr<ranks::Group> group) {
        return std::make_unique<DelayedGroup>(std::move(group), 5);
      };
      as_first_of(others, [&](ranks::Group& group) {
        fields::FlowRequest request{.most_threads = 1};
        request.ranks.group = &group;
        if (count == 3) request.ranks.largest_text = 1000;
        EXPECT_TRUE(written_by(contents, request) == expected) << count;
      });
    }
  }

  support::Told told_;
};

}  // namespace

TEST_F(RowsOfRanks, MakeTheTablesOfOne) {
  expect_same(basin({}));
  expect_same(basin({.sediments = true}));
}

TEST_F(RowsOfRanks, KeepTheMillimetresOfProjectedCoordinates) {
  cases::Case contents = basin({.mostly_dry = true});
  for (double& x : contents.mesh.x) x += 994.0;  // some of the centres lie beyond 1000 m
  expect_same(contents);
}

TEST_F(RowsOfRanks, MakeTheTablesOfOneByTheWritersOfTheirMachines) {
  const cases::Case contents = basin({});
  const std::vector<std::string> expected = written_by(contents, {.most_threads = 1});
  const std::vector<std::vector<int>> machines = {{0},       {0, 1},    {0, 0, 2},
                                                  {0, 1, 0}, {0, 1, 2}, {0, 1, 0, 1, 4}};
  for (const std::vector<int>& of_ranks : machines) {
    as_first_of(late_on_machines(of_ranks), [&](ranks::Group& group) {
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
      for (const std::uint64_t block : {1U << 22, 1000U, 57U}) {
        request.ranks.writers = {.block = block, .bytes_at_once = 3000};
        EXPECT_TRUE(written_by(contents, request) == expected) << of_ranks.size() << ' ' << block;
      }
    });
  }
}

TEST_F(RowsOfRanks, HaveWritersOnSeveralMachinesOrWhereSeveralAreAskedFor) {
  const cases::Case contents = basin({});
  const auto have_writers = [&](const std::vector<int>& machines, int count) {
    bool answer = false;
    as_first_of(late_on_machines(machines), [&](ranks::Group& group) {
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
      request.ranks.writers.count = count;
      const auto flow = fields::make_flow(contents, told_, request);
      answer = flow->rows(contents.mesh, {{fields::Field::depth}})->have_writers();
    });
    return answer;
  };
  EXPECT_FALSE(have_writers({0, 0, 0}, 0));
  EXPECT_TRUE(have_writers({0, 0, 2}, 0));
  EXPECT_FALSE(have_writers({0, 0, 2}, 1));
  EXPECT_TRUE(have_writers({0, 0, 0}, 2));
  EXPECT_FALSE(have_writers({0}, 2));
}

TEST_F(RowsOfRanks, GoThroughTheFirstRankWhereAWriterDoesNotFindTheFile) {
  const cases::Case contents = basin({});
  const support::TemporaryFolder to;
  const auto write_twice = [&](const fields::FlowRequest& request, const auto& before_writing) {
    const auto flow = fields::make_flow(contents, told_, request);
    GatheredFields values(contents.mesh, {{fields::Field::depth}});
    for (const char* const name : {"first.txt", "second.txt"}) {
      utils::WriterThread writer;
      values.gather(*flow);
      values.hand_over(writer, to.file(name), "depths\n");
      before_writing(to.file(name));
      writer.wait();
      EXPECT_FALSE(writer.has_failed());
    }
    return to.read("first.txt") + to.read("second.txt");
  };
  const std::string expected = write_twice({.most_threads = 1}, [](const std::string&) {});
  as_first_of(late_on_machines({0, 1, 1}), [&](ranks::Group& group) {
    fields::FlowRequest request{.most_threads = 1};
    request.ranks.group = &group;
    request.ranks.writers.block = 1000;
    const std::string part = to.file("first.txt.part");
    const auto spoil = [&](const std::string& name) {
      if (name + ".part" != part) return;
      while (!std::filesystem::exists(part) || std::filesystem::file_size(part) == 0) {
      }
      std::filesystem::resize_file(part, 0);  // as if another file had the name
    };
    EXPECT_EQ(write_twice(request, spoil), expected);
  });
  EXPECT_EQ(told_.warnings,
            std::vector<std::string>{"rank 0 cannot write into " + to.file("first.txt.part") +
                                     " (No such file or directory): rank 0 writes all results."});
}

TEST_F(RowsOfRanks, EndAsOneWhereTheDiskOfTheirWritersIsFull) {
  const cases::Case contents = basin({});
  const support::TemporaryFolder to;
  const std::string disk = to.file("disk");
  std::filesystem::create_directory(disk);
  if (mount("none", disk.c_str(), "tmpfs", 0, "size=16k") != 0) {
    GTEST_SKIP() << "a disk may not be mounted here";
  }
  for (const std::vector<int>& machines : {std::vector<int>{0}, {0, 1, 1}, {0, 1, 0, 3, 3}}) {
    as_first_of(late_on_machines(machines), [&](ranks::Group& group) {
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
      request.ranks.writers = {.block = 1000, .bytes_at_once = 2000};
      const auto flow = fields::make_flow(contents, told_, request);
      const std::string name = disk + "/full" + std::to_string(machines.size()) + ".txt";
      GatheredFields values(contents.mesh, {std::vector(20, fields::Field::depth)});
      testing::internal::CaptureStderr();
      values.gather(*flow);
      EXPECT_FALSE(values.write(name, ""));
      EXPECT_EQ(testing::internal::GetCapturedStderr(),
                "Error. The file " + name +
                    " couldn't be written completely: No space left on device.\n");
    });
    EXPECT_TRUE(std::filesystem::is_empty(disk));
  }
  umount(disk.c_str());
}

TEST_F(RowsOfRanks, EndAsOneWhereTheyCannotBeWritten) {
  const cases::Case contents = basin({});
  for (const int count : {1, 3, 5}) {
    as_first_of({count}, [&](ranks::Group& group) {
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
      if (count == 5) request.ranks.writers.count = 2;
      const auto flow = fields::make_flow(contents, told_, request);
      const support::TemporaryFolder to;
      // A name of its own for each: a file is told of once in a process.
      const std::string name = to.file("full" + std::to_string(count) + ".txt");
      std::filesystem::create_symlink("/dev/full", name);
      testing::internal::CaptureStderr();
      {
        GatheredFields values(contents.mesh, {{fields::Field::depth}});
        utils::WriterThread writer;
        values.gather(*flow);
        values.hand_over(writer, name, "");
        writer.wait();
        EXPECT_TRUE(writer.has_failed());
        values.gather(*flow);
        EXPECT_FALSE(values.write(name, ""));
      }
      EXPECT_EQ(testing::internal::GetCapturedStderr(),
                "Error. The file " + name +
                    " couldn't be written completely: No space left on device.\n");
    });
  }
}

TEST_F(RowsOfRanks, AreWrittenToTheirEndWhereNobodyWaitsForThem) {
  const cases::Case contents = basin({});
  const support::TemporaryFolder to;
  const auto write_to = [&](const std::string& name, const fields::FlowRequest& request) {
    const auto flow = fields::make_flow(contents, told_, request);
    GatheredFields values(contents.mesh, {{fields::Field::depth, fields::Field::depth}});
    utils::WriterThread writer;
    values.gather(*flow);
    values.hand_over(writer, to.file(name), "twice\n");
  };
  write_to("alone.txt", {.most_threads = 1});
  as_first_of({5}, [&](ranks::Group& group) {
    fields::FlowRequest request{.most_threads = 1};
    request.ranks.group = &group;
    write_to("ranks.txt", request);
  });
  EXPECT_EQ(to.read("ranks.txt"), to.read("alone.txt"));
  EXPECT_EQ(support::lines(to.read("ranks.txt")).size(), at(contents.mesh.n_cells()) + 1);
}
