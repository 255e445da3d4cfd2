// Columns that start at a cache line, so that vector loads do not straddle two.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace engine {

template <class Value>
struct CacheLineAllocator {
  using value_type = Value;
  static constexpr std::align_val_t alignment{64};

  CacheLineAllocator() = default;
  template <class Other>
  CacheLineAllocator(const CacheLineAllocator<Other>&) {}  // NOLINT: allocators convert

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
