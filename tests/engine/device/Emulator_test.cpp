// The emulated device runs every thread of every phase of every block, and finds threads of a block
// that misuse their scratch and hosts that do not wait.
#include "engine/device/Emulator.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <span>

namespace {

using engine::ThreadTeam;
using engine::device::Emulator;
using engine::device::Phase;
using engine::device::Thread;

/// Sums of the numbers of a block of a list: every thread leaves its own in the scratch, the first
/// one sums them up.
struct Sums {
  static constexpr int phases = 2, threads = 8;
  const double* numbers;
  double* sums;  ///< of the blocks
  int scratch_words() const { return threads; }

  template <class Scratch>
  static void run(Phase<0>, const Sums& kernel, const Thread& thread, Scratch scratch) {
    scratch[thread.number] = kernel.numbers[thread.block * thread.count + thread.number];
  }
  template <class Scratch>
  static void run(Phase<1>, const Sums& kernel, const Thread& thread, Scratch scratch) {
    if (thread.number > 0) return;
    double sum = 0.0;
    for (int k = 0; k < thread.count; ++k) sum += scratch[k];
    kernel.sums[thread.block] = sum;
  }
};

/// What a thread does with the words of a scratch, in a phase of its own or not.
enum class Misuse {
  none,
  reads_neighbour,     ///< which its own thread writes in the same phase
  reads_in_advance,    ///< the same, where the reader comes first
  writes_shared_word,  ///< which all threads write
  reads_unwritten,
  reads_beyond,
  writes_beyond
};

struct Misuser {
  static constexpr int phases = 2, threads = 4;
  Misuse misuse;
  int scratch_words() const { return threads + 2; }

  template <class Scratch>
  static void run(Phase<0>, const Misuser&, const Thread& thread, Scratch scratch) {
    scratch[thread.number] = 1.0;
    if (thread.number == 0) scratch[thread.count] = 1.0;
  }
  template <class Scratch>
  static void run(Phase<1>, const Misuser& kernel, const Thread& thread, Scratch scratch) {
    const int own = thread.number, last = thread.count - 1;
    switch (kernel.misuse) {
      case Misuse::none:
        scratch[own] = scratch[own] + scratch[thread.count];
        break;
      case Misuse::reads_neighbour:
        scratch[own] = own < last ? scratch[own + 1] : 0.0;
        break;
      case Misuse::reads_in_advance:
        scratch[own] = own > 0 ? scratch[own - 1] : 0.0;
        break;
      case Misuse::writes_shared_word:
        scratch[thread.count] = 2.0;
        break;
      case Misuse::reads_unwritten:
        scratch[own] = scratch[thread.count + 1];
        break;
      case Misuse::reads_beyond:
        scratch[own] = scratch[thread.count + 2];
        break;
      case Misuse::writes_beyond:
        scratch[own - 1] = 0.0;
        break;
    }
  }
};

/// What a launch of a few blocks says.
std::string complaint_of(Misuse misuse) {
  ThreadTeam team(2);
  Emulator device(team, Emulator::Mode::watching);
  try {
    device.launch(Misuser{misuse}, 3);
  } catch (const std::logic_error& error) {
    return error.what();
  }
  return {};
}

}  // namespace

TEST(Emulator, RunsEveryThreadOfEveryPhaseOfEveryBlock) {
  constexpr std::size_t blocks = 1000;
  std::vector<double> numbers(blocks * Sums::threads);
  std::iota(numbers.begin(), numbers.end(), 1.0);
  for (const Emulator::Mode mode : {Emulator::Mode::plain, Emulator::Mode::watching}) {
    ThreadTeam team(3);
    Emulator device(team, mode);
    Emulator::Array<double> on_device, sums;
    on_device.take(numbers);
    sums.resize(blocks);
    device.launch(Sums{on_device.data(), sums.data()}, blocks);
    std::vector<double> of_blocks(blocks);
    sums.give(of_blocks);
    for (std::size_t block = 0; block < blocks; ++block) {
      const double first = static_cast<double>(block * Sums::threads) + 1.0;
      EXPECT_EQ(of_blocks[block], Sums::threads * first + 28.0) << block;
    }
  }
}

TEST(Emulator, LaunchesNothingWithoutBlocks) {
  ThreadTeam team(1);
  Emulator device(team);
  Emulator::Array<double> sums;
  sums.take(std::vector<double>{7.0});
  device.launch(Sums{nullptr, sums.data()}, 0);
  std::vector<double> kept(1);
  sums.give(kept);
  EXPECT_EQ(kept, std::vector<double>{7.0});
}

TEST(Emulator, FindsMisuseOfTheScratch) {
  EXPECT_EQ(complaint_of(Misuse::none), "");
  EXPECT_EQ(complaint_of(Misuse::reads_neighbour),
            "block 0, phase 1, thread 2: word 3 is read while thread 3 writes it");
  EXPECT_EQ(complaint_of(Misuse::reads_in_advance),
            "block 0, phase 1, thread 2: word 2 is written while another thread reads it");
  EXPECT_EQ(complaint_of(Misuse::writes_shared_word),
            "block 0, phase 1, thread 2: word 4 is written by thread 3 too");
  EXPECT_EQ(complaint_of(Misuse::reads_unwritten),
            "block 0, phase 1, thread 3: word 5 is read before it is written");
  EXPECT_EQ(complaint_of(Misuse::reads_beyond), "block 0, phase 1, thread 3: word 6 is none of 6");
  EXPECT_EQ(complaint_of(Misuse::writes_beyond),
            "block 0, phase 1, thread 0: word -1 is none of 6");
}

TEST(Emulator, ShowsWhatIsOnItsWayHomeOnlyToThoseWhoWait) {
  Emulator::Array<double> on_device;
  on_device.take(std::vector<double>{1.0, 2.0});
  Emulator::Parcel parcel;
  for (int round = 0; round < 2; ++round) {  // also where the last one has been waited for
    parcel.start_home(on_device);
    EXPECT_TRUE(std::isnan(parcel.data()[0]) && std::isnan(parcel.data()[1]));
    const std::span<const double> taken = parcel.wait();
    EXPECT_EQ(std::vector<double>(taken.begin(), taken.end()), (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(parcel.wait()[1], 2.0);
  }
}

TEST(Emulator, ShowsItsMemoryOnlyToThoseWhoWait) {
  Emulator::Array<double> on_device;
  on_device.take(std::vector<double>{1.0, 2.0});
  Emulator::Mark mark;
  mark.set(on_device);
  EXPECT_TRUE(std::isnan(on_device.data()[0]) && std::isnan(on_device.data()[1]));
  EXPECT_EQ(mark.wait(), on_device.data());
  EXPECT_EQ(on_device.data()[0], 1.0);
  EXPECT_EQ(mark.wait()[1], 2.0);
}

TEST(Emulator, HoldsNothingThatWasNotSet) {
  Emulator::Array<double> on_device;
  on_device.take(std::vector<double>{1.0});
  on_device.resize(1);
  EXPECT_TRUE(std::isnan(on_device.data()[0]));
  Emulator::Parcel parcel;
  parcel.resize(1);
  parcel.data()[0] = 1.0;
  parcel.resize(1);
  EXPECT_TRUE(std::isnan(parcel.data()[0]));
}

TEST(Emulator, RefusesAParcelForAnArrayOfAnotherSize) {
  Emulator::Array<double> on_device;
  on_device.resize(2);
  Emulator::Parcel parcel;
  for (const std::size_t size : {1, 3}) {
    parcel.resize(size);
    EXPECT_THROW(parcel.start_away(on_device), std::logic_error);
  }
  parcel.resize(2);
  parcel.data()[0] = 5.0;
  parcel.start_away(on_device);
  EXPECT_EQ(on_device.data()[0], 5.0);
}
