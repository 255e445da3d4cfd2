#include "utils/Arena.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

TEST(Arena, GivesPlacesThatDoNotOverlap) {
  utils::Arena arena;
  std::vector<std::pair<unsigned char*, std::size_t>> places;
  for (int i = 0; i < 5000; ++i) {
    const std::size_t size = 1 + static_cast<std::size_t>(i * 37 % 500);
    auto* const place = static_cast<unsigned char*>(arena.allocate(size));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(place) % alignof(void*), 0u);
    std::memset(place, i % 251, size);
    places.emplace_back(place, size);
  }
  for (int i = 0; i < 5000; ++i) {
    const auto [place, size] = places[static_cast<std::size_t>(i)];
    ASSERT_EQ(place[0], i % 251);
    ASSERT_EQ(place[size - 1], i % 251);
  }
}

TEST(Arena, HasRoomForAnObjectOfAnySize) {
  utils::Arena arena;
  arena.allocate(8);
  std::memset(arena.allocate(1 << 20), 1, 1 << 20);
  std::memset(arena.allocate(8), 1, 8);
}

TEST(Arena, CanBeUsedAgainOnceItsLastObjectIsGone) {
  utils::Arena arena;
  for (int round = 0; round < 3; ++round) {
    auto* const first = static_cast<unsigned char*>(arena.allocate(16));
    std::memset(first, round, 16);
    arena.allocate(1 << 17);
    arena.release();
    EXPECT_EQ(first[15], round);  // one object is left, so its memory is still there
    arena.release();
  }
}

}  // namespace
