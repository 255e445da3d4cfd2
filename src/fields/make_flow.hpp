// The choice of what a run steps on.
#pragma once

#include <memory>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"
#include "fields/Flow.hpp"

namespace fields {

enum class Path {
  best,    ///< the tables, or the objects where the tables have no room for a cell
  tables,  ///< or an error
  objects
};

/// The flow of a case, which must outlive it, at its start. On objects there can be one flow in a
/// process at a time: they read globals, which are set here. `threads`: 0 for what suits machine
/// and mesh. Throws std::runtime_error where the path cannot be had.
std::unique_ptr<Flow> make_flow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                                Path path, int threads = 0);

/// The path that QUILLMERE_ENGINE names; throws std::runtime_error where it names none.
Path path_of_environment();

}  // namespace fields
