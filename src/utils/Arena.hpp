// Memory for many small objects that live together, without the overhead of one allocation each.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace utils {

/// Objects lie one behind the other in large blocks. Their memory is given back all at once, with
/// the last of them. To be used by one thread: the one that sets the run up and takes it down.
class Arena {
 public:
  /// Memory for an object of `size` bytes, of the alignment of a pointer.
  void* allocate(std::size_t size) {
    size = (size + alignment - 1) / alignment * alignment;
    if (size > left_) add_block(size);
    void* const place = next_;
    next_ += size;
    left_ -= size;
    ++objects_;
    return place;
  }
  /// To be called when an object has been destroyed.
  void release() {
    if (--objects_ > 0) return;
    blocks_.clear();
    blocks_.shrink_to_fit();
    left_ = 0;
  }

 private:
  static constexpr std::size_t alignment = alignof(void*);
  static constexpr std::size_t block_size = 1 << 16;

  void add_block(std::size_t least) {
    left_ = least > block_size ? least : block_size;
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(left_));
    next_ = blocks_.back().get();
  }

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::byte* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t objects_ = 0;
};

}  // namespace utils
