#include "fields/ListedMesh.hpp"

#include <utility>
#include <vector>

#include "case/initial_state.hpp"
#include "case/node_bed.hpp"

namespace fields {

std::optional<cases::MeshRows> WholeListedMesh::next() {
  if (std::exchange(is_listed_, true)) return {};
  std::vector<double> bed = cases::bed_levels_of(case_);
  std::vector<double> node_bed =
      cases::nodes_make_bed(case_) ? case_.mesh.z : cases::bed_at_nodes(case_.mesh, bed);
  return cases::all_rows_of(case_.mesh, origin_, std::move(node_bed), std::move(bed));
}

}  // namespace fields
