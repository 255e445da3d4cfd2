// How a card runs a kernel, see launch.hpp; for a compiler of CUDA alone.
#pragma once

#include "engine/device/launch.hpp"

namespace engine::device {

template <int phase, class Kernel>
__device__ void run_phases(const Kernel& kernel, const Thread& thread, double* scratch) {
  if constexpr (phase < Kernel::phases) {
    Kernel::run(Phase<phase>{}, kernel, thread, scratch);
    __syncthreads();  // behind the last phase for the next block, which takes over the scratch
    run_phases<phase + 1>(kernel, thread, scratch);
  }
}

/// The blocks of a launch, shared among those of the grid.
template <class Kernel>
__global__ void __launch_bounds__(Kernel::threads, Kernel::blocks_at_once)
    run_on_card(const Kernel kernel, int blocks) {
  extern __shared__ double scratch[];
  for (int block = static_cast<int>(blockIdx.x); block < blocks;
       block += static_cast<int>(gridDim.x)) {
    if (!has_work(kernel, block)) continue;  // for all threads alike
    run_phases<0>(kernel, {block, static_cast<int>(threadIdx.x), Kernel::threads}, scratch);
  }
}

}  // namespace engine::device
