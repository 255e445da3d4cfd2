// A sequence that keeps its first entries in itself, without a block of memory of its own: the
// lists of a cell nearly always hold three entries, and there are millions of cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace utils {

/// Up to `inline_capacity` plain values in place, and a block of memory for more.
template <class Value, std::uint32_t inline_capacity>
class SmallVector {
  static_assert(std::is_trivially_copyable_v<Value>);
  static_assert(std::is_trivially_default_constructible_v<Value>);

 public:
  SmallVector() : here_{} {}
  template <class Range>
  explicit SmallVector(const Range& values) : SmallVector() {
    for (const Value& value : values) push_back(value);
  }
  ~SmallVector() {
    if (is_elsewhere()) delete[] elsewhere_;
  }
  SmallVector(const SmallVector&) = delete;
  SmallVector& operator=(const SmallVector&) = delete;

  void push_back(Value value) {
    if (size_ == capacity_) grow();
    data()[size_++] = value;
  }
  /// New entries are zero.
  void resize(std::size_t size) {
    if (size < size_) size_ = static_cast<std::uint32_t>(size);
    while (size_ < size) push_back(Value{});
  }
  void clear() { size_ = 0; }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  Value& operator[](std::size_t i) { return data()[i]; }
  const Value& operator[](std::size_t i) const { return data()[i]; }
  Value* begin() { return data(); }
  Value* end() { return data() + size_; }
  const Value* begin() const { return data(); }
  const Value* end() const { return data() + size_; }

 private:
  bool is_elsewhere() const { return capacity_ > inline_capacity; }
  Value* data() { return is_elsewhere() ? elsewhere_ : here_; }
  const Value* data() const { return is_elsewhere() ? elsewhere_ : here_; }

  void grow() {
    const std::uint32_t capacity = 2 * capacity_;
    Value* const block = new Value[capacity];
    std::memcpy(block, data(), size_ * sizeof(Value));
    if (is_elsewhere()) delete[] elsewhere_;
    elsewhere_ = block;
    capacity_ = capacity;
  }

  union {
    Value here_[inline_capacity];
    Value* elsewhere_;
  };
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = inline_capacity;
};

}  // namespace utils
