// Ranges of numbers, and how threads share them.
#pragma once

#include <cstddef>

namespace engine {

struct Range {
  int begin = 0, end = 0;
  int size() const { return end - begin; }
};

/// Share of a list that a member of a team of threads takes.
inline Range share_of(int member, int members, std::size_t count) {
  const auto cut = [&](int m) {
    return static_cast<int>(count * static_cast<std::size_t>(m) /
                            static_cast<std::size_t>(members));
  };
  return {cut(member), cut(member + 1)};
}

}  // namespace engine
