// Runs of cells that tables and loops know. Without the standard library: loops are built once per
// instruction set.
#pragma once

namespace engine {

/// Length of the runs of cells of which the shortest characteristic length is kept.
inline constexpr int cells_of_shortest = 64;

}  // namespace engine
