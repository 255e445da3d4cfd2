#include "utils/bytes.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

struct Point {
  double x = 0.0;
  int number = 0;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.x, self.number);
  }
};

struct Everything {
  bool is_there = false;
  long count = 0;
  std::string name;
  std::vector<double> numbers;
  std::vector<Point> points;
  std::array<Point, 2> pair{};
  std::optional<Point> perhaps;
  std::vector<std::pair<int, long>> counts;
  std::variant<int, Point> either;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.is_there, self.count, self.name, self.numbers, self.points, self.pair, self.perhaps,
          self.counts, self.either);
  }
};

Everything something() {
  Everything all;
  all.is_there = true;
  all.count = -7;
  all.name = "a name";
  all.numbers = {0.1, -0.0, std::nextafter(1.0, 2.0), -std::numeric_limits<double>::infinity()};
  all.points = {{1.5, 2}, {2.5, 3}};
  all.pair = {Point{3.5, 4}, Point{4.5, 5}};
  all.perhaps = Point{5.5, 6};
  all.counts = {{1, 2}, {3, 4}};
  all.either = Point{6.5, 7};
  return all;
}

utils::Bytes bytes_of(const Everything& all) {
  utils::Bytes bytes;
  utils::put_into(bytes, all);
  return bytes;
}

TEST(Bytes, GiveBackWhatWasPutIntoThem) {
  const utils::Bytes bytes = bytes_of(something());
  Everything all;
  all.numbers = {1.0};
  utils::take_out_of(bytes, all);
  EXPECT_EQ(bytes_of(all), bytes);
  EXPECT_EQ(all.name, "a name");
  EXPECT_EQ(all.numbers.size(), 4U);
  EXPECT_TRUE(std::signbit(all.numbers[1]));
  EXPECT_EQ(all.points[1].number, 3);
  EXPECT_EQ(all.perhaps->x, 5.5);
  EXPECT_EQ(all.counts[1].second, 4);
  EXPECT_EQ(std::get<Point>(all.either).number, 7);
  utils::take_out_of(bytes_of({}), all);
  EXPECT_FALSE(all.perhaps);
  EXPECT_TRUE(all.numbers.empty() && all.points.empty() && all.name.empty());
}

TEST(Bytes, AreRefusedWhereTheyAreTooFewOrTooMany) {
  const utils::Bytes bytes = bytes_of(something());
  Everything all;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const utils::Bytes fewer(bytes.begin(), bytes.begin() + static_cast<long>(size));
    EXPECT_THROW(utils::take_out_of(fewer, all), utils::BadBytes) << size;
  }
  utils::Bytes more = bytes;
  more.push_back({});
  EXPECT_THROW(utils::take_out_of(more, all), utils::BadBytes);
}

TEST(Bytes, AreRefusedWithCountsThatTheyCannotHold) {
  utils::Bytes bytes = bytes_of(something());
  const std::size_t count_of_numbers = 1 + 8 + 8 + 6;
  for (std::size_t i = 0; i < 8; ++i) bytes[count_of_numbers + i] = std::byte{0xff};
  Everything all;
  EXPECT_THROW(utils::take_out_of(bytes, all), utils::BadBytes);
  EXPECT_EQ(all.numbers.capacity(), 0U);
}

TEST(Bytes, AreRefusedWithATruthThatIsNone) {
  utils::Bytes bytes = bytes_of(something());
  bytes[0] = std::byte{2};
  Everything all;
  EXPECT_THROW(utils::take_out_of(bytes, all), utils::BadBytes);
}

}  // namespace
