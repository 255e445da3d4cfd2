// A sum of doubles without rounding: the same bits for any order of its terms, on any number of
// threads and ranks.
// Source: Kulisch (2013), Computer Arithmetic and Validity, de Gruyter, chapter 8: an accumulator
// as wide as all doubles.
#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

namespace utils {

class ExactSum {
 public:
  void add(double value);
  /// Adds all terms of another sum.
  void add(const ExactSum& other);

  /// The sum, rounded once, to nearest and to even; 0 is positive. Beyond the largest double it is
  /// infinite, as with an infinite term; NaN where a term is, or where both infinities are.
  double value() const;

  /// Equal sums have equal parts.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    if constexpr (std::is_const_v<Self>) {
      ExactSum carried = self;
      carried.carry();
      visit(carried.digits_, carried.has_nan_, carried.has_infinity_, carried.has_minus_infinity_);
    } else {
      visit(self.digits_, self.has_nan_, self.has_infinity_, self.has_minus_infinity_);
      self.require_carried();
    }
  }

 private:
  /// In units of the smallest double, and room for 2^46 of the largest one.
  static constexpr int bits_per_digit = 32, count = 67;
  using Digits = std::array<std::int64_t, count>;

  /// Brings all digits but the highest into [0, 2^32), the highest one takes the sign.
  void carry();
  /// Throws BadBytes where digits are out of these bounds.
  void require_carried() const;
  static double rounded(const Digits& magnitude);

  Digits digits_{};      ///< lowest first, each with a sign
  int since_carry_ = 0;  ///< terms, of which digits have room for 2^31
  bool has_nan_ = false, has_infinity_ = false, has_minus_infinity_ = false;
};

}  // namespace utils
