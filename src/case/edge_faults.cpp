#include "case/edge_faults.hpp"

namespace cases {

EdgeFaults faults_of(physics::PlanPoint a, physics::PlanPoint b,
                     const physics::SpacePoint& left_center, bool has_boundary,
                     bool has_right_cell) {
  const bool has_length = physics::edge_between(a, b).length > 0.0;
  return {!has_length, has_length && points_towards(left_center, a, b),
          has_boundary && has_right_cell};
}

EdgeFaults faults_of(const Mesh& mesh, Number edge, const Boundary* boundary) {
  return faults_of(mesh.plan_node(mesh.node1[at(edge)]), mesh.plan_node(mesh.node2[at(edge)]),
                   mesh.center_of(mesh.left[at(edge)]), boundary != nullptr,
                   mesh.right[at(edge)] >= 0);
}

}  // namespace cases
