#include "ugrid/ClassicFile.hpp"

#include <gtest/gtest.h>

#include <cerrno>

#include "support/TemporaryFolder.hpp"

namespace {

using ugrid::Type;

/// A variable that does not grow, and one of two values in every record.
class ClassicFile : public testing::Test {
 protected:
  ClassicFile() { bytes_.open(folder.file("a.nc")); }

  void put_record(ugrid::ClassicFile& file, int record) const {
    const float values[] = {static_cast<float>(record), -1.5f};
    file.put(1, static_cast<std::size_t>(record), std::span<const float>(values));
  }
  std::string text() const { return folder.read("a.nc"); }
  unsigned char count() const { return static_cast<unsigned char>(text().at(7)); }

  support::TemporaryFolder folder;
  ugrid::ClassicLayout layout = ugrid::classic_layout(
      {.dimensions = {{"t", 0}, {"cell", 2}},
       .attributes = {},
       .variables = {{"x", Type::integer, {1}, {}}, {"h", Type::single_precision, {0, 1}, {}}}});
  utils::WritableFile bytes_;
};

TEST_F(ClassicFile, HoldsNumbersFromTheirHighestByteOn) {
  ugrid::ClassicFile file(bytes_, layout);
  file.begin();
  const int x[] = {1, -2};
  file.put(0, 0, std::span<const int>(x));
  put_record(file, 0);
  file.show(1);
  EXPECT_EQ(file.error(), 0);
  std::string expected = layout.header;
  expected[7] = 1;
  expected += std::string("\0\0\0\1\xff\xff\xff\xfe\0\0\0\0\xbf\xc0\0\0", 16);
  EXPECT_EQ(text(), expected);
}

TEST_F(ClassicFile, TellsOfNoRecordBeforeItIsShown) {
  ugrid::ClassicFile file(bytes_, layout);
  file.begin();
  put_record(file, 0);
  EXPECT_EQ(count(), 0);
  file.show(1);
  put_record(file, 1);
  EXPECT_EQ(count(), 1);
}

TEST_F(ClassicFile, GoesOnBehindItsFirstRecords) {
  ugrid::ClassicFile whole(bytes_, layout);
  whole.begin();
  for (int record = 0; record < 3; ++record) put_record(whole, record);
  whole.show(3);
  const std::string expected = text();

  utils::WritableFile again;
  again.open_as_it_is(folder.file("a.nc"));
  ugrid::ClassicFile file(again, layout);
  file.go_on(1);
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(text().size(), layout.end_of_record(1));
  put_record(file, 1);
  put_record(file, 2);
  file.show(3);
  EXPECT_EQ(text(), expected);
}

TEST_F(ClassicFile, HasTheChecksumOfARecordThatIsWhole) {
  ugrid::ClassicFile file(bytes_, layout);
  file.begin();
  const std::string name = folder.file("a.nc");
  for (int record = 0; record < 2; ++record) {
    put_record(file, record);
    EXPECT_EQ(ugrid::checksum_of_record(name, layout, static_cast<std::uint64_t>(record)),
              file.checksum());
  }
  file.show(2);
  const auto first = ugrid::checksum_of_record(name, layout, 0);
  ASSERT_TRUE(first.has_value());
  ASSERT_TRUE(ugrid::checksum_of_record(name, layout, 1).has_value());
  EXPECT_NE(ugrid::checksum_of_record(name, layout, 1), first);
  bytes_.cut_off(layout.end_of_record(2) - 1);
  EXPECT_EQ(ugrid::checksum_of_record(name, layout, 0), first);
  EXPECT_FALSE(ugrid::checksum_of_record(name, layout, 1).has_value());
  EXPECT_FALSE(ugrid::checksum_of_record(folder.file("none.nc"), layout, 0).has_value());
}

TEST_F(ClassicFile, WritesNothingMoreAfterAnError) {
  utils::WritableFile full;
  full.open("/dev/full");
  ugrid::ClassicFile file(full, layout);
  file.begin();
  EXPECT_EQ(file.error(), ENOSPC);
  file.show(1);
  EXPECT_EQ(file.error(), ENOSPC);
}

TEST_F(ClassicFile, HoldsManyValues) {
  constexpr std::size_t many = 1000003;  // of more than one piece
  layout = ugrid::classic_layout({.dimensions = {{"cell", many}},
                                  .attributes = {},
                                  .variables = {{"x", Type::double_precision, {0}, {}}}});
  ugrid::ClassicFile file(bytes_, layout);
  file.begin();
  std::vector<double> values(many);
  values.back() = 1.0;
  file.put(0, 0, std::span<const double>(values));
  EXPECT_EQ(text().size(), layout.header.size() + 8 * many);
  EXPECT_EQ(text().substr(text().size() - 8, 2), "\x3f\xf0");
}

TEST(ClassicFileOfNames, FillsCharactersUpToFour) {
  const support::TemporaryFolder folder;
  utils::WritableFile bytes;
  bytes.open(folder.file("a.nc"));
  const ugrid::ClassicLayout layout =
      ugrid::classic_layout({.dimensions = {{"name", 5}},
                             .attributes = {},
                             .variables = {{"n", Type::character, {0}, {}}}});
  ugrid::ClassicFile file(bytes, layout);
  file.begin();
  file.put(0, "weirs");
  EXPECT_EQ(folder.read("a.nc"), layout.header + std::string("weirs\0\0\0", 8));
}

}  // namespace
