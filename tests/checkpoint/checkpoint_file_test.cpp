#include "checkpoint/checkpoint_file.hpp"

#include <gtest/gtest.h>

#include <random>

#include "checkpoint/SomeCheckpoint.hpp"

namespace {

using support::some_checkpoint;
using support::trouble_with;

class CheckpointFile : public testing::Test {
 protected:
  std::string text(std::size_t cells = 20, std::uint64_t number = 3) {
    return support::text_of_checkpoint(folder, some_checkpoint(cells), number);
  }
  support::TemporaryFolder folder;
};

}  // namespace

TEST_F(CheckpointFile, GivesBackAllThatWasWritten) {
  for (const std::size_t cells : {0UL, 20UL, 2000000UL}) {  // the last takes several blocks
    std::istringstream stream(text(cells, 9));
    EXPECT_EQ(checkpoint::look_at(stream).number, 9U);
    EXPECT_EQ(checkpoint::look_at(stream).trouble, "");
    EXPECT_TRUE(support::are_the_same(checkpoint::read_file(stream), some_checkpoint(cells)));
    checkpoint::FileReader file(stream);
    std::vector<double> rows(3 * cells);
    file.take(rows.data(), rows.size() * sizeof(double));
    file.finish();
    EXPECT_EQ(rows, std::vector<double>(3 * cells, 0.5));
  }
}

TEST_F(CheckpointFile, IsRefusedWithOtherRowsThanItTellsOf) {
  checkpoint::Checkpoint kept = some_checkpoint(20);
  const auto trouble_with_rows = [&](std::size_t bytes) {
    checkpoint::FileWriter file(folder.file("rows"), 1, kept);
    file.put(std::string(bytes, 'x').data(), bytes);
    EXPECT_EQ(file.finish([] { return true; }), "");
    return trouble_with(folder.read("rows"));
  };
  const std::string senseless = "what it holds makes no sense";
  EXPECT_EQ(trouble_with_rows(20 * 24), "");
  for (const std::size_t bytes : {0, 24, 20 * 24 - 1, 20 * 24 + 1, 21 * 24}) {
    EXPECT_EQ(trouble_with_rows(bytes), senseless) << bytes;
  }
  kept.flow.columns.clear();
  EXPECT_EQ(trouble_with_rows(24), senseless);
  EXPECT_EQ(trouble_with_rows(0), "");
}

TEST_F(CheckpointFile, GivesNoDamagedRows) {
  std::string damaged = text(2000000);
  damaged[9 << 20] ^= 1;
  std::istringstream stream(damaged);
  checkpoint::FileReader file(stream);
  std::vector<char> rows(file.left());
  EXPECT_THROW(file.take(rows.data(), rows.size()), checkpoint::BadFile);
  std::istringstream whole(text());
  checkpoint::FileReader short_file(whole);
  EXPECT_THROW(short_file.take(rows.data(), short_file.left() + 1), checkpoint::BadFile);
}

TEST_F(CheckpointFile, IsRefusedWithAnyByteChanged) {
  const std::string whole = text();
  std::mt19937 random(1);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    std::string damaged = whole;
    damaged[i] = static_cast<char>(damaged[i] ^ (1 << (random() % 8)));
    EXPECT_NE(trouble_with(damaged), "") << "byte " << i << " of " << whole.size();
  }
}

TEST_F(CheckpointFile, IsRefusedWhereItEndsEarlyOrLate) {
  const std::string whole = text();
  for (std::size_t size = 8; size < whole.size(); ++size) {
    EXPECT_EQ(trouble_with(whole.substr(0, size)), "it is not complete") << size;
  }
  EXPECT_EQ(trouble_with(whole + "\n"), "it is not complete");
  EXPECT_EQ(trouble_with(""), "it is not complete");
}

TEST_F(CheckpointFile, NamesADamagedBlock) {
  std::string damaged = text(2000000);
  ASSERT_GT(damaged.size(), 10U << 20);
  damaged[9 << 20] ^= 1;
  EXPECT_EQ(trouble_with(damaged), "block 2 (counted from 0) is damaged");
}

TEST_F(CheckpointFile, MadeOfPiecesOfTwoIsRefused) {
  const std::string one = text(2000000, 3), other = text(2000000, 4);
  ASSERT_EQ(one.size(), other.size());
  std::string mixed = one;
  mixed.replace(9 << 20, 1 << 20, other, 9 << 20, 1 << 20);  // within a block, the same bytes
  EXPECT_EQ(mixed, one);
  const std::size_t block = (4 << 20) + 16;
  mixed.replace(24 + block, block, other, 24 + block, block);
  EXPECT_EQ(trouble_with(mixed), "block 1 (counted from 0) is damaged");
  mixed = one;
  mixed.replace(24, block, one, 24 + block, block);  // a block in the place of another
  EXPECT_EQ(trouble_with(mixed), "block 0 (counted from 0) is damaged");
}

TEST_F(CheckpointFile, OfAnotherFormatIsToldFromADamagedOne) {
  const std::string whole = text();
  std::string older = whole, turned = whole;
  older[12] = 0;
  EXPECT_EQ(trouble_with(older),
            "it is of version 0 of the format, and this program reads version 6");
  std::swap(turned[8], turned[11]);
  std::swap(turned[9], turned[10]);
  EXPECT_EQ(trouble_with(turned), "it was written by a machine with another order of bytes");
  EXPECT_EQ(trouble_with("x\ty\tzb\th\tqx\tqy\n" + whole), "it is no checkpoint");
  EXPECT_EQ(trouble_with("Qm"), "it is not complete");  // all that a killed run may have left
}

TEST_F(CheckpointFile, DoesNotCountWithoutItsFooter) {
  const auto trouble =
      support::write_checkpoint(folder.file("kept"), 1, some_checkpoint(), [] { return false; });
  EXPECT_EQ(trouble, "a result before it was lost");
  EXPECT_EQ(trouble_with(folder.read("kept")), "it is not complete");
}

TEST_F(CheckpointFile, SaysWhyItCannotBeWritten) {
  const auto write = [&](const std::string& name) {
    return support::write_checkpoint(name, 1, some_checkpoint());
  };
  EXPECT_EQ(write(folder.file("nowhere/kept")), "No such file or directory");
  EXPECT_EQ(write("/dev/full"), "No space left on device");
}
