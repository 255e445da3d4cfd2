// How the process gives memory back, and ends where there is none.
#pragma once

namespace utils {

/// Lets every large block of memory return to the system when it is freed. By default the GNU
/// library keeps blocks as large as the largest that was freed so far: the texts of the input files
/// would stay with the process while its tables are built.
void return_large_blocks();

/// From now on the process ends with one message and the status of an error where memory is
/// missing, instead of an exception that nobody could handle without memory. No line of a result
/// file is cut.
void end_where_memory_is_missing();

}  // namespace utils
