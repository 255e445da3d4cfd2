// The body of a cell with a soil: what the soil asks for in a step.
#pragma once

#include "kernels/columns.hpp"
#include "physics/infiltration.hpp"

namespace kernels {

QM_HD inline physics::Infiltration infiltration(const physics::GreenAmptSoil& soil,
                                                const physics::SoilStep& step, double h, double F) {
  return physics::infiltration_green_ampt(soil, step, h, F, 0.0);
}

QM_HD inline physics::Infiltration infiltration(const physics::HortonSoil& soil,
                                                const physics::SoilStep& step, double h, double F) {
  return physics::infiltration_horton(soil, step, h, F, 0.0);
}

/// The depth (m) that the soil of cell i asks for. The loop is called once per soil: a cell that
/// has the soil `number` gets its demand, and its infiltrated depth after recovery is stored; a
/// cell of another soil keeps the demand so far.
template <class Soil>
QM_HD inline double demand_of_soil(const CellColumns& cells, int i, int number, const Soil& soil,
                                   const physics::SoilStep& step, double so_far) {
  const double F = cells.infiltrated[i];
  const physics::Infiltration of_cell = infiltration(soil, step, cells.h[i], F);
  const bool has_soil = cells.soil[i] == number;
  cells.infiltrated[i] = has_soil ? of_cell.infiltrated : F;
  return has_soil ? of_cell.demand : so_far;
}

}  // namespace kernels
