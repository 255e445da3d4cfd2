// The mesh of a case as programs are given it.
#pragma once

#include "case/Mesh.hpp"
#include "quillmere/simulation.hpp"

namespace quillmere {

Mesh mesh_of(const cases::Mesh& mesh);

}  // namespace quillmere
