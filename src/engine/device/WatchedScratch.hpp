// Scratch of a block that finds what a device would only sometimes do wrong: races between the
// threads of a phase, words read before they are written, and words out of bounds.
#pragma once

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace engine::device {

class WatchedScratch {
 public:
  explicit WatchedScratch(int words) : words_(static_cast<std::size_t>(words)) {}

  /// What follows is done by a thread in a phase; threads of a phase come one after the other.
  void enter(int phase, int thread) {
    phase_ = phase;
    thread_ = thread;
  }
  double read(std::ptrdiff_t i);
  void write(std::ptrdiff_t i, double value);

  /// What was found first; empty: nothing.
  const std::string& complaint() const { return complaint_; }

 private:
  static constexpr int nobody = -1, several = -2;

  /// A word, and who used it last.
  struct Word {
    double value = NAN;
    int phase_of_write = -1, writer = nobody;
    int phase_of_read = -1, reader = nobody;
  };

  /// Null, with a complaint, where there is no such word.
  Word* word(std::ptrdiff_t i);
  void complain(std::ptrdiff_t i, const std::string& what);

  std::vector<Word> words_;
  int phase_ = -1, thread_ = nobody;
  std::string complaint_;
};

/// The words of such a scratch from one on, used as a pointer to numbers.
class WatchedColumn {
 public:
  class Word {
   public:
    Word(WatchedScratch& scratch, std::ptrdiff_t i) : scratch_(scratch), i_(i) {}
    operator double() const { return scratch_.read(i_); }  // NOLINT: reads as a number does
    Word(const Word&) = default;
    Word& operator=(const Word& other) { return *this = static_cast<double>(other); }  // NOLINT
    Word& operator=(double value) {
      scratch_.write(i_, value);
      return *this;
    }

   private:
    WatchedScratch& scratch_;
    std::ptrdiff_t i_;
  };

  WatchedColumn() = default;
  explicit WatchedColumn(WatchedScratch& scratch) : scratch_(&scratch) {}

  Word operator[](std::ptrdiff_t i) const { return {*scratch_, first_ + i}; }
  WatchedColumn operator+(std::ptrdiff_t count) const {
    WatchedColumn later = *this;
    later.first_ += count;
    return later;
  }
  WatchedColumn operator-(std::ptrdiff_t count) const { return *this + -count; }

 private:
  WatchedScratch* scratch_ = nullptr;
  std::ptrdiff_t first_ = 0;
};

}  // namespace engine::device
