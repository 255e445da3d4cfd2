// A square of two triangles.
#pragma once

#include <vector>

#include "case/Mesh.hpp"

namespace support {

/// The second cell runs clockwise.
inline cases::Mesh square() {
  cases::Mesh mesh;
  mesh.x = {0.0, 1.0, 1.0, 0.0};
  mesh.y = {0.0, 0.0, 1.0, 1.0};
  mesh.z = {0.0, 0.0, 3.0, 6.0};
  mesh.add_cell(std::vector<cases::Number>{0, 1, 2});
  mesh.add_cell(std::vector<cases::Number>{0, 3, 2});
  return mesh;
}

}  // namespace support
