#include "model/SWE.hpp"

#include "case/boundary_kinds.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "interfaces/HydroFluxLHLLC.hpp"
#include "model/CellSWE.hpp"
#include "utils/CellTable.hpp"
#include "utils/stop.hpp"

void SWE::build_cell(int id, const std::vector<const MeshNode*>& nodes) {
  cells.push_back(std::make_unique<CellSWE>(id, nodes));
}

// To add a flux or a boundary condition: its formula in physics/, its class in interfaces/, and a
// row here.
void SWE::build_interface(int scheme, int edge, int left, int right, const MeshNode& node1,
                          const MeshNode& node2, int bc, double value, const std::string& file) {
  ComputationalCell* const L = cells[static_cast<std::size_t>(left)].get();
  ComputationalCell* const R = right >= 0 ? cells[static_cast<std::size_t>(right)].get() : nullptr;
  const int code = bc == edge_code::interior ? scheme : bc;

  std::unique_ptr<GenericInterface> built;
  switch (code) {
    case edge_code::limnigraph:
      built = std::make_unique<HydroBCLimnigraph>(L, node1, node2, file);
      break;
    case edge_code::hydrograph:
      built = std::make_unique<HydroBCHydrograph>(L, node1, node2, file);
      break;
    case edge_code::wall:
      built = std::make_unique<HydroBCWall>(L, node1, node2);
      break;
    case edge_code::water_level:
      built = std::make_unique<HydroBCWaterLevel>(L, node1, node2, value);
      break;
    case edge_code::discharge:
      built = std::make_unique<HydroBCDischarge>(L, node1, node2, value);
      break;
    case edge_code::transmissive:
      built = std::make_unique<HydroBCTransmissive>(L, node1, node2);
      break;
    case edge_code::scheme_lhllc:
      built = std::make_unique<HydroFluxLHLLC>(L, R, node1, node2);
      break;
    case edge_code::scheme_roe:
      utils::fatal("Error. The flux scheme \"Roe\" (code 2, edge " + std::to_string(edge) +
                       ") is not available; use \"LHLLC\".\n",
                   -1, "should be Roe scheme\n");
    default:
      refuse_boundary_code(code);
  }
  append_interface(std::move(built), edge, left, right);
}

void SWE::computeFiniteVolumeBalance() {
  for (const auto& cell : cells) cell->Update();
}

double SWE::computeFlowStep() { return advance_one_step(); }

void SWE::printPicture(const std::string& name) {
  cell_value_rows.allocate(cells.size(), has_infiltration ? 4 : 3);
  utils::CellTable table(name,
                         has_infiltration ? "x\ty\tzb\th\tqx\tqy\tf\n" : "x\ty\tzb\th\tqx\tqy\n");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const HydraulicVariableSWE& U = cells[i]->UVal();
    double* const row = cell_value_rows.row(i);
    row[0] = U.h;
    row[1] = U.qx;
    row[2] = U.qy;
    if (has_infiltration) row[3] = cells[i]->param.infiltrated_depth;
    // Intended: zb is the z of the centre, the mean of the vertices, whatever a bed file says.
    const MeshNode& center = cells[i]->center;
    table.add_row(center.x, center.y, center.z, {row, cell_value_rows.width});
  }
  table.commit();
}
