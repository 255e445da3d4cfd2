// Columns of one length whose begins are spread over a page. Large columns that are allocated one
// by one all begin at the same place of a page, and a loop that walks them together then has all
// its numbers in the same few sets of the first cache.
#pragma once

#include "engine/aligned_vector.hpp"

namespace engine {

template <int count>
class SpreadColumns {
 public:
  /// All columns get that many numbers, of value 0.
  void assign(std::size_t size) {
    constexpr std::size_t page = 4096 / sizeof(double), line = 64 / sizeof(double);
    constexpr std::size_t shift = page / count / line * line;
    pitch_ = (size + page - 1) / page * page + shift;
    numbers_.assign(count * pitch_, 0.0);
  }

  /// Null before assign.
  double* operator[](int column) { return numbers_.data() + at(column) * pitch_; }
  const double* operator[](int column) const { return numbers_.data() + at(column) * pitch_; }

 private:
  AlignedVector<double> numbers_;
  std::size_t pitch_ = 0;
};

}  // namespace engine
