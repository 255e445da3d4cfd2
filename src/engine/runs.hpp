// Lengths that tables and loops agree on. Nothing of the standard library here: loops are built
// once per instruction set, and its inline functions may not be.
#pragma once

namespace engine {

/// Number of consecutive cells that share one entry in the column of shortest characteristic
/// lengths.
inline constexpr int cells_of_shortest = 32;

/// Number of cells that the loops over the cells of a patch take at once.
inline constexpr int cells_of_block = 8 * cells_of_shortest;

}  // namespace engine
