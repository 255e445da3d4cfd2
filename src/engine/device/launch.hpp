// What a kernel of a device is. It runs as blocks of threads; those of a block share a scratch of
// numbers and go through the phases of the kernel together, with a barrier behind each. Blocks know
// nothing of each other.
//
// A kernel is a value with
//   static constexpr int phases, threads;  threads of a block
//   static constexpr int blocks_at_once;   of a multiprocessor: there are registers for so many; 0:
//                                          for as many as the compiler thinks best
//   int scratch_words() const;             of a block
//   QM_HD bool has_work(const Kernel&, int block);   where some blocks may have nothing to do
//   template <class Scratch>               of each phase, from 0 on
//   QM_HD void run(Phase<0>, const Kernel&, const Thread&, Scratch);
// where a Scratch is indexed as a double*.
// What a thread leaves in the scratch is there for others in the phases after; so within a phase a
// word has one writer, and no other reads it then. No barrier stands within a phase.
#pragma once

#include "physics/arithmetic.hpp"

namespace engine::device {

/// A thread of a block. Those of a block share a list by taking every `count`-th entry.
struct Thread {
  int block;   ///< of the launch
  int number;  ///< in its block
  int count;   ///< of the threads of the block
};

template <int number>
struct Phase {};

template <class Kernel>
QM_HD inline bool has_work(const Kernel& kernel, int block) {
  if constexpr (requires { Kernel::has_work(kernel, block); }) {
    return Kernel::has_work(kernel, block);
  } else {
    return true;
  }
}

}  // namespace engine::device
