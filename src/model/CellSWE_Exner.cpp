#include "model/CellSWE_Exner.hpp"

#include "globals/Globals.hpp"
#include "physics/bed_load_mpm.hpp"
#include "physics/cell_update_exner.hpp"

static_assert(sizeof(CellSWE_Exner) == sizeof(ComputationalCell), "a cell class adds no members");

void CellSWE_Exner::Update() {
  const double zero_depth = Constants::ZERO_DEPTH;
  const HydraulicVariableSWE F = flux_balance();
  const physics::ExnerCellUpdate after =
      physics::update_exner({.h = U.h,
                             .qx = U.qx,
                             .qy = U.qy,
                             .hs = U.hs,
                             .qsx = U.qsx,
                             .qsy = U.qsy,
                             .Fh = F.h,
                             .Fqx = F.qx,
                             .Fqy = F.qy,
                             .Fhs = F.hs,
                             .dt_over_area = Globals::dt * (1.0 / area),
                             .dt = Globals::dt,
                             .rain = S.h,
                             .source_qx = S.qx,
                             .source_qy = S.qy},
                            zero_depth);
  U.set_values(after.h, after.qx, after.qy, after.hs, after.qsx, after.qsy);
  bed_level = bed_rock_level + U.hs;
  free_surface_level = bed_level + U.h;
  S.set_values(0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  compute_qs_MPM();

  const physics::Maxima maxima = physics::updated_maxima(
      {max_values.h, max_values.qx, max_values.qy}, U.h, physics::depth_terms(U.h, zero_depth),
      after.qx_moving, after.qy_moving, zero_depth);
  max_values.set_values(maxima.h, maxima.u, maxima.v);
}

void CellSWE_Exner::compute_qs_MPM() {
  const physics::BedLoad load = physics::bed_load_of_cell(
      {U.h, U.qx, U.qy, U.hs, U.qsx, U.qsy},
      physics::depth_terms(U.h, Constants::ZERO_DEPTH).reciprocal, friction,
      {Globals_Sed::g_d50, Globals_Sed::g_sedimentsDensity}, Constants::ZERO_DEPTH);
  U.qsx = load.qsx;
  U.qsy = load.qsy;
  dqs_dh = load.dqs_dh;
}
