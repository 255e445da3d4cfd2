// Tables that several ranks make rows of are those of one, byte for byte.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "fields/make_flow.hpp"
#include "output/CPicture.hpp"
#include "output/MaximaFile.hpp"
#include "output/Snapshot.hpp"
#include "ranks/DelayedGroup.hpp"
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

TEST_F(RowsOfRanks, EndAsOneWhereTheyCannotBeWritten) {
  const cases::Case contents = basin({});
  for (const int count : {1, 3}) {
    as_first_of({count}, [&](ranks::Group& group) {
      fields::FlowRequest request{.most_threads = 1};
      request.ranks.group = &group;
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
