#include "model/CellSWE.hpp"

#include "globals/Globals.hpp"
#include "physics/cell_update_swe.hpp"

static_assert(sizeof(CellSWE) == sizeof(ComputationalCell), "a cell class adds no members");

void CellSWE::Update() {
  const double zero_depth = Constants::ZERO_DEPTH;
  const HydraulicVariableSWE F = flux_balance();
  const physics::SweCellUpdate after =
      physics::update_swe({.h = U.h,
                           .qx = U.qx,
                           .qy = U.qy,
                           .Fh = F.h,
                           .Fqx = F.qx,
                           .Fqy = F.qy,
                           .dt_over_area = Globals::dt * (1.0 / area),
                           .dt = Globals::dt,
                           .rain = S.h,
                           .source_qx = S.qx,
                           .source_qy = S.qy,
                           .infiltration_step = param.infiltration_step,
                           .infiltrated_depth = param.infiltrated_depth,
                           .bed_rock_level = bed_rock_level,
                           .max_node_level = max_node_level},
                          zero_depth);
  U.set_values(after.h, after.qx, after.qy);
  free_surface_level = after.free_surface_level;
  param.infiltrated_depth = after.infiltrated_depth;
  param.infiltration_step = 0.0;
  S.set_values(0.0, 0.0, 0.0);

  const physics::Maxima maxima =
      physics::updated_maxima({max_values.h, max_values.qx, max_values.qy}, U.h,
                              physics::depth_terms(U.h, zero_depth), U.qx, U.qy, zero_depth);
  max_values.set_values(maxima.h, maxima.u, maxima.v);
}
