// The kernels that bring values of cells here and there together, so that they are copied as one,
// and back to their places. A thread to a cell.
#pragma once

#include <cstddef>

#include "engine/device/launch.hpp"

namespace engine::device {

struct CopiedCells {
  static constexpr int most_columns = 9;
  double* columns[most_columns];
  int column_count;
  const int* places;
  int cells;
  double* values;  ///< all columns of the first cell, of the second, ...
};

/// A bed that moves follows from its sediment, which lies on rock; null: there is none.
struct BedColumns {
  const double *rock, *sediment;
  double* bed;
};

template <bool to_their_places>
struct CopyCells {
  static constexpr int phases = 1, threads = 256, blocks_at_once = 0;

  CopiedCells copied;
  BedColumns laid;  ///< with what comes to its place

  static int scratch_words() { return 0; }
  static std::size_t blocks_for(std::size_t cells) { return (cells + threads - 1) / threads; }

  template <class Scratch>
  QM_HD void run(Phase<0>, const CopyCells& kernel, const Thread& thread, Scratch) {
    const CopiedCells& copied = kernel.copied;
    const int k = thread.block * thread.count + thread.number;
    if (k >= copied.cells) return;
    const int i = copied.places[k];
    double* const values = copied.values + static_cast<std::ptrdiff_t>(k) * copied.column_count;
    // A number of columns that the compiler knows: it keeps no list of them in memory.
    for (int c = 0; c < CopiedCells::most_columns; ++c) {
      if (c >= copied.column_count) continue;
      if constexpr (to_their_places) {
        copied.columns[c][i] = values[c];
      } else {
        values[c] = copied.columns[c][i];
      }
    }
    if (!to_their_places || kernel.laid.bed == nullptr) return;
    kernel.laid.bed[i] = kernel.laid.rock[i] + kernel.laid.sediment[i];
  }
};

}  // namespace engine::device
