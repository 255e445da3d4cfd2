#include "case/edge_faults.hpp"

namespace cases {

EdgeFaults faults_of(const Mesh& mesh, Number edge, const Boundary* boundary) {
  const bool has_length = mesh.edge_of(edge).length > 0.0;
  return {!has_length, has_length && mesh.points_into_left_cell(edge),
          boundary != nullptr && mesh.right[at(edge)] >= 0};
}

}  // namespace cases
