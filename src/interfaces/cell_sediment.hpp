// What the fluxes of the model with sediments read of a cell's bed.
#pragma once

#include "globals/Globals.hpp"
#include "interfaces/GenericInterface.hpp"
#include "physics/flux_clhllc.hpp"

/// The erodible layer of a cell.
inline physics::CellSediment sediment_of(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  return {U.hs, U.qsx, U.qsy, cell.dqs_dh};
}

/// Inflow of bed (m3/s) into the cell of a boundary edge that its own transport crosses; none when
/// the cell is dry.
inline double bed_slot(const ComputationalCell& cell, const physics::Edge& edge) {
  if (!physics::is_wet(cell.UVal().h, Constants::ZERO_DEPTH)) return 0.0;
  return -edge.length *
         physics::boundary_bed_flux(sediment_of(cell), edge, Globals_Sed::g_sedimentsPorosity);
}
