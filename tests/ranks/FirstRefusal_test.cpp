#include "ranks/FirstRefusal.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "ranks/on_ranks.hpp"
#include "utils/stop.hpp"

namespace {

using ranks::FirstRefusal;

/// What a call ends with.
template <class Call>
std::string end_of(const Call& call) {
  try {
    call();
  } catch (const utils::FatalError& error) {
    return "fatal " + std::to_string(error.status()) + ": " + error.text() + error.output();
  } catch (const std::logic_error& error) {
    return std::string("logic: ") + error.what();
  }
  return "nothing";
}

void keep(FirstRefusal& refusal, std::int64_t record, const std::string& message) {
  refusal.keep([&] { utils::fatal(message, 3, "said"); }, [&] { return record; });
}

}  // namespace

TEST(FirstRefusal, OfManyIsThatOfTheFirstRecord) {
  test_ranks::on_late_ranks(4, [](ranks::Group& group) {
    FirstRefusal refusal;
    if (group.rank() == 1) keep(refusal, 70, "seventy\n");
    if (group.rank() == 2) {
      keep(refusal, 50, "fifty\n");
      keep(refusal, 60, "sixty\n");
      keep(refusal, 40, "forty\n");
    }
    EXPECT_EQ(refusal.record_of_all(group), 40);
    EXPECT_EQ(end_of([&] { refusal.end(group); }), "fatal 3: forty\nsaid");
  });
}

TEST(FirstRefusal, EndsNothingWhereAllIsWell) {
  test_ranks::on_ranks(3, [](ranks::Group& group) {
    FirstRefusal refusal;
    refusal.keep([] {}, [] { return 5; });
    EXPECT_EQ(refusal.record_of_all(group), FirstRefusal::none);
    EXPECT_EQ(end_of([&] { refusal.end(group); }), "nothing");
  });
}

TEST(FirstRefusal, ComesOutAsItIsWhereRank0MetIt) {
  for (const int meeting : {0, 1}) {
    test_ranks::on_ranks(3, [&](ranks::Group& group) {
      const auto step = [&] {
        if (group.rank() == meeting) throw std::logic_error("broken");
      };
      const auto all = [&] { ranks::do_together(group, step); };
      EXPECT_THROW(all(), ranks::Refusal);
      const bool is_as_it_was = group.rank() == 0 && meeting == 0;
      EXPECT_EQ(end_of([&] { ranks::in_step(group, all); }),
                is_as_it_was ? "logic: broken" : "fatal -1: broken\n");
      EXPECT_FALSE(group.is_broken());
    });
  }
}
