// A graphics card: its memory, its copies and its launches; for a compiler of CUDA alone. A process
// uses one, in one stream, so that copies and kernels follow each other in the order of their
// calls.
#pragma once

#include <cuda_runtime.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/device/card_launch.hpp"

namespace engine::device {

/// Throws std::runtime_error for what a call of CUDA answers, but success.
inline void check(cudaError_t status) {
  if (status == cudaSuccess) return;
  cudaGetLastError();  // or the next launch would be taken to have failed
  throw std::runtime_error(
      "Error. The graphics card fails: " + std::string(cudaGetErrorString(status)) + ".");
}

/// The stream of the process, and the memory that its copies pass through: a card copies by itself
/// only from and to memory that the system does not move. While one half of it is copied by the
/// card, the other is by the processor.
class CardStream {
 public:
  static CardStream& of_process() {
    static CardStream stream;
    return stream;
  }
  CardStream(const CardStream&) = delete;
  CardStream& operator=(const CardStream&) = delete;

  operator cudaStream_t() const { return stream_; }

  /// Returns when the memory of the host may change again.
  void copy_to_card(void* to, const void* from, std::size_t bytes) {
    for (std::size_t done = 0; done < bytes; done += half_size) {
      const std::size_t count = std::min(half_size, bytes - done);
      Half& half = next_half();
      check(cudaEventSynchronize(half.copied));
      std::memcpy(half.memory, static_cast<const char*>(from) + done, count);
      check(cudaMemcpyAsync(static_cast<char*>(to) + done, half.memory, count,
                            cudaMemcpyHostToDevice, stream_));
      check(cudaEventRecord(half.copied, stream_));
    }
  }

  /// Returns when the copy is there; so all that was launched before is done, too.
  void copy_from_card(void* to, const void* from, std::size_t bytes) {
    Half* before = nullptr;
    std::size_t done_before = 0, count_before = 0;
    const auto finish = [&] {
      if (before == nullptr) return;
      check(cudaEventSynchronize(before->copied));
      std::memcpy(static_cast<char*>(to) + done_before, before->memory, count_before);
    };
    for (std::size_t done = 0; done < bytes; done += half_size) {
      const std::size_t count = std::min(half_size, bytes - done);
      Half& half = next_half();
      check(cudaEventSynchronize(half.copied));
      check(cudaMemcpyAsync(half.memory, static_cast<const char*>(from) + done, count,
                            cudaMemcpyDeviceToHost, stream_));
      check(cudaEventRecord(half.copied, stream_));
      finish();
      before = &half;
      done_before = done;
      count_before = count;
    }
    finish();
  }

 private:
  static constexpr std::size_t half_size = 8 << 20;  // bytes
  struct Half {
    void* memory = nullptr;
    cudaEvent_t copied = nullptr;
  };

  CardStream() {
    check(cudaStreamCreateWithFlags(&stream_, cudaStreamNonBlocking));
    for (Half& half : halves_) {
      check(cudaMallocHost(&half.memory, half_size));
      check(cudaEventCreateWithFlags(&half.copied, cudaEventDisableTiming));
    }
  }
  Half& next_half() { return halves_[turn_ = 1 - turn_]; }

  cudaStream_t stream_ = nullptr;
  Half halves_[2];
  int turn_ = 0;
};

/// Values in the memory of the card.
template <class Value>
class CardArray {
 public:
  CardArray() = default;
  CardArray(CardArray&& other) noexcept { swap(other); }
  CardArray& operator=(CardArray&& other) noexcept {
    swap(other);
    return *this;
  }
  ~CardArray() { cudaFree(values_); }

  std::size_t size() const { return size_; }
  /// Null without values.
  Value* data() const { return size_ > 0 ? values_ : nullptr; }

  /// Other values, which are not set.
  void resize(std::size_t size) {
    if (size > capacity_) {
      check(cudaFree(std::exchange(values_, nullptr)));
      capacity_ = 0;
      const cudaError_t status = cudaMalloc(&values_, size * sizeof(Value));
      if (status == cudaErrorMemoryAllocation) lack_memory(size);
      check(status);
      capacity_ = size;
    }
    size_ = size;
  }
  /// Copies from the host, as many as there are there.
  void take(std::span<const Value> values) {
    resize(values.size());
    CardStream::of_process().copy_to_card(values_, values.data(), values.size_bytes());
  }
  /// Copies those from a place on to the host, as many as are asked for.
  void give(std::span<Value> values, std::size_t from = 0) const {
    CardStream::of_process().copy_from_card(values.data(), values_ + from, values.size_bytes());
  }

 private:
  void swap(CardArray& other) noexcept {
    std::swap(values_, other.values_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }
  [[noreturn]] static void lack_memory(std::size_t size) {
    cudaGetLastError();  // forgotten: who asked may go on without
    std::size_t free = 0, all = 0;
    cudaMemGetInfo(&free, &all);
    throw std::runtime_error("Error. The graphics card lacks memory: " + std::to_string(free) +
                             " of its " + std::to_string(all) + " bytes are free, and " +
                             std::to_string(size * sizeof(Value)) + " more are needed.");
  }

  Value* values_ = nullptr;
  std::size_t size_ = 0, capacity_ = 0;
};

/// Values of an array that others than the device will read.
class CardMark {
 public:
  CardMark() { check(cudaEventCreateWithFlags(&event_, cudaEventDisableTiming)); }
  CardMark(const CardMark&) = delete;
  CardMark& operator=(const CardMark&) = delete;
  ~CardMark() { cudaEventDestroy(event_); }

  /// Those that are there once what was launched before is done; nothing that is launched before
  /// wait() may read them.
  void set(const CardArray<double>& values) {
    values_ = values.data();
    check(cudaEventRecord(event_, CardStream::of_process()));
  }
  /// Returns them when they are there.
  const double* wait() const {
    check(cudaEventSynchronize(event_));
    return values_;
  }

 private:
  cudaEvent_t event_ = nullptr;
  const double* values_ = nullptr;
};

/// Values on their way between the card and the host, while the card goes on.
class CardParcel {
 public:
  CardParcel() = default;
  CardParcel(const CardParcel&) = delete;
  CardParcel& operator=(const CardParcel&) = delete;
  ~CardParcel() { release(); }

  /// Other values, which are not set.
  void resize(std::size_t size) {
    if (size > capacity_) {
      release();
      check(cudaMallocHost(&values_, size * sizeof(double)));
      capacity_ = size;
    }
    size_ = size;
  }
  double* data() { return values_; }

  /// Takes all of an array, as it is once what was launched before is done; returns at once.
  void start_home(const CardArray<double>& values) {
    resize(values.size());
    copy(values_, values.data(), cudaMemcpyDeviceToHost);
    taken_.set(values);
  }
  /// Returns what was taken, when it is there.
  std::span<const double> wait() const {
    taken_.wait();
    return {values_, size_};
  }
  /// Gives all to an array of this size, or throws std::logic_error; before what is launched from
  /// now on, and until that is done, nothing may change here. Returns at once.
  void start_away(CardArray<double>& values) const {
    if (values.size() != size_) {
      throw std::logic_error("a parcel of " + std::to_string(size_) +
                             " numbers goes to an array of " + std::to_string(values.size()));
    }
    copy(values.data(), values_, cudaMemcpyHostToDevice);
  }

 private:
  /// Copies may still be under way.
  void release() {
    if (values_ == nullptr) return;
    cudaStreamSynchronize(CardStream::of_process());
    cudaFreeHost(std::exchange(values_, nullptr));
    capacity_ = 0;
  }
  void copy(double* to, const double* from, cudaMemcpyKind direction) const {
    if (size_ == 0) return;
    check(cudaMemcpyAsync(to, from, size_ * sizeof(double), direction, CardStream::of_process()));
  }

  double* values_ = nullptr;
  std::size_t size_ = 0, capacity_ = 0;
  CardMark taken_;
};

/// One of the cards that the driver shows.
class Card {
 public:
  template <class Value>
  using Array = CardArray<Value>;
  using Parcel = CardParcel;
  using Mark = CardMark;

  /// Cards are counted over and over from 0. The calling thread uses it from now on; all that a
  /// process makes have the same number, as they share its stream.
  explicit Card(int number) {
    int cards = 0;
    check(cudaGetDeviceCount(&cards));
    const int device = number % cards;
    check(cudaSetDevice(device));
    cudaDeviceProp properties;
    check(cudaGetDeviceProperties(&properties, device));
    name_ = properties.name;
    if (cards > 1) name_ += ", card " + std::to_string(device) + " of " + std::to_string(cards);
    multiprocessors_ = properties.multiProcessorCount;
    scratch_bytes_ = properties.sharedMemPerBlockOptin;
  }

  /// Returns at once: what copies the results waits.
  template <class Kernel>
  void launch(const Kernel& kernel, std::size_t blocks) {
    if (blocks == 0) return;
    const std::size_t bytes = kernel.scratch_words() * sizeof(double);
    const int at_once = blocks_at_once<Kernel>(bytes);
    const auto grid = static_cast<unsigned>(std::min(blocks, static_cast<std::size_t>(at_once)));
    run_on_card<<<grid, Kernel::threads, bytes, CardStream::of_process()>>>(
        kernel, static_cast<int>(blocks));
    check(cudaGetLastError());
  }

  const char* name() const { return name_.c_str(); }
  /// Threads of the host that take part.
  int threads() const { return 1; }
  /// The most that a block can have.
  std::size_t scratch_bytes() const { return scratch_bytes_; }

 private:
  /// As many as the card runs together.
  template <class Kernel>
  int blocks_at_once(std::size_t bytes) const {
    static std::size_t known_bytes = static_cast<std::size_t>(-1);
    static int known = 0;
    if (bytes == known_bytes) return known;
    const auto function = run_on_card<Kernel>;
    check(cudaFuncSetAttribute(function, cudaFuncAttributeMaxDynamicSharedMemorySize,
                               static_cast<int>(bytes)));
    int of_multiprocessor = 0;
    check(cudaOccupancyMaxActiveBlocksPerMultiprocessor(&of_multiprocessor, function,
                                                        Kernel::threads, bytes));
    known_bytes = bytes;
    return known = std::max(1, of_multiprocessor) * multiprocessors_;
  }

  std::string name_;
  int multiprocessors_ = 0;
  std::size_t scratch_bytes_ = 0;
};

}  // namespace engine::device
