// Numbers and text formatted into memory with the bytes that a default output stream would write.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace utils {

/// Notation holds until it is changed, as on a stream: six significant digits at first.
class TextBuffer {
 public:
  TextBuffer() = default;
  /// The other one is empty then.
  TextBuffer(TextBuffer&& other) noexcept
      : memory_(std::move(other.memory_)),
        room_(std::exchange(other.room_, 0)),
        size_(std::exchange(other.size_, 0)),
        fixed_(other.fixed_) {}
  TextBuffer& operator=(TextBuffer&& other) noexcept {
    memory_ = std::move(other.memory_);
    room_ = std::exchange(other.room_, 0);
    size_ = std::exchange(other.size_, 0);
    fixed_ = other.fixed_;
    return *this;
  }

  /// Six significant digits, the default notation of streams.
  void use_default_notation() { fixed_ = false; }
  /// Three decimals.
  void use_fixed_notation() { fixed_ = true; }

  TextBuffer& operator<<(double value);
  TextBuffer& operator<<(char c) {
    make_room(1);
    memory_.get()[size_++] = c;
    return *this;
  }
  TextBuffer& operator<<(std::string_view text) {
    make_room(text.size());
    text.copy(memory_.get() + size_, text.size());
    size_ += text.size();
    return *this;
  }

  /// What was written since the buffer was made or cleared; it holds until more is written.
  std::string_view text() const { return {memory_.get(), size_}; }
  void clear() { size_ = 0; }

 private:
  void make_room(std::size_t characters) {
    if (room_ - size_ < characters) grow(characters);
  }
  void grow(std::size_t characters);

  struct Free {
    void operator()(char* memory) const { std::free(memory); }
  };

  std::unique_ptr<char, Free> memory_;  ///< the text, and more of which nothing is written yet
  std::size_t room_ = 0, size_ = 0;     ///< of the memory, and of the text
  bool fixed_ = false;
};

}  // namespace utils
