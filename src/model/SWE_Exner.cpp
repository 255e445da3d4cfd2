#include "model/SWE_Exner.hpp"

#include "case/boundary_kinds.hpp"
#include "globals/Globals.hpp"
#include "interfaces/SedBCDischarge.hpp"
#include "interfaces/SedBCTransmissive.hpp"
#include "interfaces/SedBCWall.hpp"
#include "interfaces/SedBCWaterLevel.hpp"
#include "interfaces/SedFluxCLHLLC.hpp"
#include "model/CellSWE_Exner.hpp"
#include "utils/CellTable.hpp"

void SWE_Exner::build_cell(int id, const std::vector<const MeshNode*>& nodes) {
  cells.push_back(std::make_unique<CellSWE_Exner>(id, nodes));
}

void SWE_Exner::setSedimentsParam(utils::TextScanner& file) {
  Globals_Sed::g_sedimentsManning = file.read_number("friction coefficient");
  Globals_Sed::g_sedimentsDensity = file.read_number("density");
  Globals_Sed::g_d50 = file.read_number("mean grain diameter");
  Globals_Sed::g_sedimentsPorosity = file.read_number("porosity");
}

void SWE_Exner::build_interface(int scheme, int edge, int left, int right, const MeshNode& node1,
                                const MeshNode& node2, int bc, double value, const std::string&) {
  ComputationalCell* const L = cells[static_cast<std::size_t>(left)].get();
  ComputationalCell* const R = right >= 0 ? cells[static_cast<std::size_t>(right)].get() : nullptr;
  const int code = bc == edge_code::interior ? scheme : bc;
  constexpr double no_sediment_fed = 0.0;

  std::unique_ptr<GenericInterface> built;
  switch (code) {
    case edge_code::wall:
      built = std::make_unique<SedBCWall>(L, node1, node2);
      break;
    case edge_code::water_level:
      built = std::make_unique<SedBCWaterLevel>(L, node1, node2, value);
      break;
    case edge_code::discharge:
      built = std::make_unique<SedBCDischarge>(L, node1, node2, value, no_sediment_fed);
      break;
    case edge_code::transmissive:
      built = std::make_unique<SedBCTransmissive>(L, node1, node2);
      break;
    case edge_code::scheme_lhllc:
      built = std::make_unique<SedFluxCLHLLC>(L, R, node1, node2);
      break;
    default:  // time series and the reserved scheme too
      refuse_boundary_code(code);
  }
  append_interface(std::move(built), edge, left, right);
}

void SWE_Exner::computeFiniteVolumeBalance() {
  for (const auto& cell : cells) cell->Update();
}

double SWE_Exner::computeFlowStep() { return advance_one_step(); }

void SWE_Exner::printPicture(const std::string& name) {
  cell_value_rows.allocate(cells.size(), 7);
  utils::CellTable table(name, "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy\n",
                         utils::CellTable::Bed::first_value);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const HydraulicVariableSWE& U = cells[i]->UVal();
    double* const row = cell_value_rows.row(i);
    row[0] = cells[i]->bed_level;
    row[1] = U.h;
    row[2] = U.qx;
    row[3] = U.qy;
    row[4] = U.hs;
    row[5] = U.qsx;
    row[6] = U.qsy;
    const MeshNode& center = cells[i]->center;
    table.add_row(center.x, center.y, center.z, {row, cell_value_rows.width});
  }
  table.commit();
}
