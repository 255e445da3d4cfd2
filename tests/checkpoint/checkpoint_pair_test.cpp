// Which of the two files is written next, and which one a run goes on from.
#include "checkpoint/checkpoint_pair.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "checkpoint/CheckpointKeeper.hpp"
#include "checkpoint/SomeCheckpoint.hpp"
#include "support/text.hpp"

namespace {

class CheckpointPair : public testing::Test {
 protected:
  void keep(long steps) {
    checkpoint::CheckpointKeeper keeper({.name = name});
    keep(keeper, steps);
  }
  static void keep(checkpoint::CheckpointKeeper& keeper, long steps,
                   support::SomeRows rows = support::SomeRows()) {
    keeper.contents() = support::some_checkpoint();
    keeper.contents().clock.steps = steps;
    keeper.write(rows, [] { return true; });
    keeper.finish();
  }
  long newest() const { return checkpoint::load_newest(name).contents.clock.steps; }
  std::string trouble() const {
    try {
      checkpoint::load_newest(name);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }
  static std::string refusal(const std::string& of) {
    try {
      const checkpoint::CheckpointKeeper keeper({.name = of});
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  support::TemporaryFolder folder;
  std::string name = folder.file("kept");
};

}  // namespace

TEST_F(CheckpointPair, IsWrittenInTurnAndReadFromItsNewerFile) {
  checkpoint::CheckpointKeeper keeper({.name = name});
  for (long steps = 1; steps <= 5; ++steps) {
    const std::string before_a = folder.read("kept.a"), before_b = folder.read("kept.b");
    keep(keeper, steps);
    EXPECT_EQ(folder.read("kept.a") != before_a, steps % 2 == 1);
    EXPECT_EQ(folder.read("kept.b") != before_b, steps % 2 == 0);
    EXPECT_EQ(newest(), steps);
  }
}

TEST_F(CheckpointPair, IsTheSameWhereRowsComeInPieces) {
  keep(1);
  const std::string whole = folder.read("kept.a");
  for (const std::size_t pieces : {1, 2, 4}) {
    std::filesystem::remove(folder.file("kept.a"));
    checkpoint::CheckpointKeeper keeper({.name = name});
    keep(keeper, 1, support::SomeRows(pieces));
    EXPECT_TRUE(folder.read("kept.a") == whole) << pieces;
  }
}

TEST_F(CheckpointPair, StaysWhereRowsAreLost) {
  checkpoint::CheckpointKeeper keeper({.name = name});
  keep(keeper, 1);
  support::SomeRows rows(2);
  rows.is_lost = true;
  testing::internal::CaptureStderr();
  keep(keeper, 2, rows);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning: the checkpoint " + name +
                ".b couldn't be written: their rank has no memory; the one before it stays.\n");
  EXPECT_EQ(newest(), 1);
  keep(keeper, 3, support::SomeRows(2));
  EXPECT_EQ(newest(), 3);
}

TEST_F(CheckpointPair, IsKeptAgainAfterMemoryWasShort) {
  checkpoint::CheckpointKeeper keeper({.name = name});
  keep(keeper, 1);
  for (const std::size_t pieces : {0, 2}) {
    support::SomeRows rows(pieces);
    rows.lacks_memory = true;
    testing::internal::CaptureStderr();
    keep(keeper, 2, rows);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning: the checkpoint " + name +
                  ".b couldn't be written: std::bad_alloc; the one before it stays.\n");
    EXPECT_EQ(newest(), 1);
  }
  keep(keeper, 3, support::SomeRows(2));
  EXPECT_EQ(newest(), 3);
}

TEST_F(CheckpointPair, GoesOnInTurnInTheNextRun) {
  for (long steps = 1; steps <= 5; ++steps) {
    keep(steps);
    EXPECT_EQ(newest(), steps);
    const auto files = checkpoint::find_files(name);
    EXPECT_EQ(files[0].look.number + files[1].look.number,
              static_cast<std::uint64_t>(steps + steps - 1));
  }
}

TEST_F(CheckpointPair, IsReadFromTheFileThatIsWhole) {
  keep(1);
  keep(2);
  const std::string newer = folder.read("kept.b");
  folder.write("kept.b", newer.substr(0, newer.size() - 1));
  const checkpoint::Loaded loaded = checkpoint::load_newest(name);
  EXPECT_EQ(loaded.contents.clock.steps, 1);
  EXPECT_EQ(loaded.file, name + ".a");
  EXPECT_EQ(loaded.number, 1U);
  ASSERT_EQ(loaded.warnings.size(), 1U);
  EXPECT_EQ(loaded.warnings[0], name + ".b: it is not complete");
  keep(3);  // into the file that is not whole
  EXPECT_EQ(newest(), 3);
  EXPECT_EQ(checkpoint::find_files(name)[0].look.number, 1U);

  std::string damaged = folder.read("kept.b");
  damaged[100] ^= 1;
  folder.write("kept.b", damaged);
  EXPECT_EQ(newest(), 1);
}

TEST_F(CheckpointPair, IsRefusedWithTheTroubleOfBothFiles) {
  EXPECT_EQ(trouble(), "Error. There is no checkpoint \"" + name + "\" to go on from. " + name +
                           ".a: it does not exist. " + name + ".b: it does not exist.");
  keep(1);
  folder.write("kept.a", folder.read("kept.a").substr(0, 50));
  folder.write("kept.b", "a letter\n");
  EXPECT_EQ(trouble(), "Error. There is no checkpoint \"" + name + "\" to go on from. " + name +
                           ".a: it is not complete. " + name + ".b: it is no checkpoint.");
}

TEST_F(CheckpointPair, IsNotKeptInPlaceOfSomethingElse) {
  folder.write("kept.b", "a letter\n");
  EXPECT_EQ(refusal(name),
            "Error. The checkpoint " + name + ".b cannot be kept: it is no checkpoint.");
  EXPECT_EQ(folder.read("kept.b"), "a letter\n");
  std::filesystem::create_directory(folder.file("other.a"));
  EXPECT_TRUE(support::contains(refusal(folder.file("other")), "it is no file that can be read"));
  EXPECT_TRUE(support::contains(refusal(folder.file("nowhere/kept")), "its folder does not exist"));
  folder.write("empty.a", "");  // left by a run that was killed
  EXPECT_EQ(refusal(folder.file("empty")), "");
}

TEST_F(CheckpointPair, IsDueAfterAnIntervalOrWhenItIsWished) {
  bool is_wished = false;
  checkpoint::CheckpointKeeper seldom(
      {name, 1e300, [&] { return std::exchange(is_wished, false); }});
  EXPECT_FALSE(seldom.is_due());
  is_wished = true;
  EXPECT_TRUE(seldom.is_due());
  EXPECT_TRUE(seldom.is_due());  // until it is kept
  keep(seldom, 1);
  EXPECT_FALSE(seldom.is_due());
  checkpoint::CheckpointKeeper often({name, 1e-9, {}});
  EXPECT_TRUE(often.is_due());
}

TEST_F(CheckpointPair, StaysWhereTheNextOneCannotBeWritten) {
  checkpoint::CheckpointKeeper keeper({.name = name});
  keep(keeper, 1);
  std::filesystem::create_directory(name + ".b");
  testing::internal::CaptureStderr();
  keep(keeper, 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning: the checkpoint " + name +
                ".b couldn't be written: Is a directory; the one before it stays.\n");
  std::filesystem::remove(name + ".b");
  keep(keeper, 3);
  EXPECT_EQ(newest(), 3);
  EXPECT_EQ(checkpoint::find_files(name)[0].look.number, 1U);
}
