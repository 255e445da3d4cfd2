// A device that the processor plays: the same kernels, in a worse order than a card may choose.
#pragma once

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "engine/Range.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/aligned_vector.hpp"
#include "engine/device/WatchedScratch.hpp"
#include "engine/device/launch.hpp"

namespace engine::device {

/// What went between the host and emulated devices so far, in all of the process.
struct EmulatedTraffic {
  static inline std::atomic<std::size_t> bytes = 0, launches = 0;
};

/// Values in the memory of the device, which is a piece of its own here too: what is not copied is
/// not there.
template <class Value>
class EmulatedArray {
 public:
  std::size_t size() const { return size_; }
  /// Null without values.
  Value* data() const { return values_.get(); }

  /// Other values, which are not set: numbers are NaN.
  void resize(std::size_t size) {
    make_room(size);
    if constexpr (std::is_same_v<Value, double>) std::fill_n(values_.get(), size, NAN);
  }
  /// Copies from the host, as many as there are there.
  void take(std::span<const Value> values) {
    make_room(values.size());
    std::copy(values.begin(), values.end(), values_.get());
    EmulatedTraffic::bytes += values.size_bytes();
  }
  /// Copies those from a place on to the host, as many as are asked for.
  void give(std::span<Value> values, std::size_t from = 0) const {
    std::copy_n(values_.get() + from, values.size(), values.begin());
    EmulatedTraffic::bytes += values.size_bytes();
  }

 private:
  void make_room(std::size_t size) {
    if (size == size_) return;
    values_ = size > 0 ? std::make_unique_for_overwrite<Value[]>(size) : nullptr;
    size_ = size;
  }

  std::unique_ptr<Value[]> values_;
  std::size_t size_ = 0;
};

/// Numbers that somebody may look at only once he has waited for them; until then he sees NaN.
class HiddenNumbers {
 public:
  /// Hides those that lie in a memory.
  void hide(std::span<double> values) {
    shown_ = values;
    hidden_.assign(values.begin(), values.end());
    std::fill(values.begin(), values.end(), NAN);
  }
  void show() {
    if (hidden_.empty()) return;
    std::copy(hidden_.begin(), hidden_.end(), shown_.begin());
    hidden_.clear();
  }

 private:
  std::span<double> shown_;
  std::vector<double> hidden_;
};

/// Values of an array that others than the device will read.
class EmulatedMark {
 public:
  /// Those that are there once what was launched before is done; nothing that is launched before
  /// wait() may read them.
  void set(EmulatedArray<double>& values) {
    values_ = values.data();
    hidden_.hide({values_, values.size()});
  }
  /// Returns them when they are there.
  const double* wait() {
    hidden_.show();
    return values_;
  }

 private:
  HiddenNumbers hidden_;
  double* values_ = nullptr;
};

/// Values on their way between the device and the host.
class EmulatedParcel {
 public:
  /// Other values, which are not set.
  void resize(std::size_t size) {
    values_.assign(size, NAN);
    hidden_ = {};
  }
  double* data() { return values_.data(); }

  /// Takes all of an array, as it is once what was launched before is done.
  void start_home(const EmulatedArray<double>& values) {
    values_.resize(values.size());
    values.give(values_);
    hidden_.hide(values_);
  }
  /// Returns what was taken, when it is there.
  std::span<const double> wait() {
    hidden_.show();
    return values_;
  }
  /// Gives all to an array of this size, or throws std::logic_error; before what is launched from
  /// now on.
  void start_away(EmulatedArray<double>& values) const {
    if (values.size() != values_.size()) {
      throw std::logic_error("a parcel of " + std::to_string(values_.size()) +
                             " numbers goes to an array of " + std::to_string(values.size()));
    }
    values.take(values_);
  }

 private:
  std::vector<double> values_;
  HiddenNumbers hidden_;
};

/// Blocks run in random order on the threads of a team, the threads of a block in reverse, each
/// block in scratch of exactly its size that holds nothing yet.
class Emulator {
 public:
  template <class Value>
  using Array = EmulatedArray<Value>;
  using Parcel = EmulatedParcel;
  using Mark = EmulatedMark;
  enum class Mode { plain, watching };

  /// The team must outlive it. Where it is `watching`, a launch throws std::logic_error if threads
  /// of a block misuse their scratch, see WatchedScratch; that takes longer.
  explicit Emulator(ThreadTeam& team, Mode mode = Mode::plain) : team_(team), mode_(mode) {}

  /// Returns when all blocks have run.
  template <class Kernel>
  void launch(const Kernel& kernel, std::size_t blocks) {
    ++EmulatedTraffic::launches;
    order_.resize(blocks);
    std::iota(order_.begin(), order_.end(), 0);
    std::shuffle(order_.begin(), order_.end(), random_);
    complaints_.assign(mode_ == Mode::watching ? blocks : 0, {});
    team_.run([&](int member) {
      const Range share = share_of(member, team_.size(), blocks);
      for (int k = share.begin; k < share.end; ++k) run_block(kernel, order_[at(k)]);
    });
    for (std::size_t block = 0; block < complaints_.size(); ++block) {
      if (complaints_[block].empty()) continue;
      throw std::logic_error("block " + std::to_string(block) + ", " + complaints_[block]);
    }
  }

  const char* name() const { return mode_ == Mode::watching ? "watched" : "emulated"; }
  int threads() const { return team_.size(); }
  /// The most that a block can have: as on a card of compute capability 9.0.
  std::size_t scratch_bytes() const { return 227 * 1024; }

 private:
  template <class Kernel>
  void run_block(const Kernel& kernel, int block) {
    if (!has_work(kernel, block)) return;
    if (mode_ == Mode::watching) {
      WatchedScratch scratch(kernel.scratch_words());
      run_phases<0>(kernel, block, WatchedColumn(scratch),
                    [&](int phase, int thread) { scratch.enter(phase, thread); });
      complaints_[at(block)] = scratch.complaint();
      return;
    }
    const auto words = static_cast<std::size_t>(kernel.scratch_words());
    const auto scratch = std::make_unique_for_overwrite<double[]>(words);
    std::fill_n(scratch.get(), words, NAN);
    run_phases<0>(kernel, block, scratch.get(), [](int, int) {});
  }

  template <int phase, class Kernel, class Scratch, class Enter>
  static void run_phases(const Kernel& kernel, int block, Scratch scratch, const Enter& enter) {
    if constexpr (phase < Kernel::phases) {
      for (int thread = Kernel::threads - 1; thread >= 0; --thread) {
        enter(phase, thread);
        Kernel::run(Phase<phase>{}, kernel, {block, thread, Kernel::threads}, scratch);
      }
      run_phases<phase + 1>(kernel, block, scratch, enter);
    }
  }

  ThreadTeam& team_;
  Mode mode_;
  std::mt19937 random_;  // the same order in every run
  std::vector<int> order_;
  std::vector<std::string> complaints_;  ///< of the blocks
};

}  // namespace engine::device
