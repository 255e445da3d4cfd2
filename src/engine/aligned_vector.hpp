// Columns that start at a cache line, so that vector loads do not straddle two, and whose new
// values are not set, so that the thread that works on them is the first to touch their memory.
#pragma once

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace engine {

template <class Value>
struct CacheLineAllocator {
  using value_type = Value;
  static constexpr std::align_val_t alignment{64};

  CacheLineAllocator() = default;
  template <class Other>
  CacheLineAllocator(const CacheLineAllocator<Other>&) {}  // NOLINT: allocators convert

  template <class Other>
  struct rebind {
    using other = CacheLineAllocator<Other>;
  };
  /// resize(n) leaves new numbers as they are; resize(n, value) sets them.
  template <class Other>
  void construct(Other* value) {
    ::new (static_cast<void*>(value)) Other;
  }
  template <class Other, class... Arguments>
  void construct(Other* value, Arguments&&... arguments) {
    ::new (static_cast<void*>(value)) Other(std::forward<Arguments>(arguments)...);
  }

  Value* allocate(std::size_t count) {
    return static_cast<Value*>(::operator new(count * sizeof(Value), alignment));
  }
  void deallocate(Value* values, std::size_t) { ::operator delete(values, alignment); }
  bool operator==(const CacheLineAllocator&) const = default;
};

template <class Value>
using AlignedVector = std::vector<Value, CacheLineAllocator<Value>>;

/// Memory of columns, bytes.
template <class... Columns>
std::size_t bytes_of(const Columns&... columns) {
  return ((columns.capacity() * sizeof(typename Columns::value_type)) + ... + std::size_t{0});
}

/// Index of an entry.
inline std::size_t at(int i) { return static_cast<std::size_t>(i); }

}  // namespace engine
