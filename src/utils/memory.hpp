// How the process gives memory back.
#pragma once

namespace utils {

/// Lets every large block of memory return to the system when it is freed. By default the GNU
/// library keeps blocks as large as the largest that was freed so far: the texts of the input files
/// would stay with the process while its tables are built.
void return_large_blocks();

}  // namespace utils
