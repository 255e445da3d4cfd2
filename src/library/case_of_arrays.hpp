// A case that a program gives in arrays.
#pragma once

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"
#include "quillmere/simulation.hpp"

namespace quillmere {

/// Its nodes and cells; throws an Error where nothing can be computed with them.
cases::Mesh mesh_without_edges(const Case& given);

/// Throws an Error at the first thing that nothing can be computed with, and warns of what hardly
/// was meant.
cases::Case case_of_arrays(const Case& given, cases::Diagnostics& diagnostics);

}  // namespace quillmere
