#include "sources/FrictionTerm.hpp"

#include "globals/Globals.hpp"
#include "physics/friction_manning.hpp"

void FrictionTerm::compute_source_term(double, HydraulicVariableSWE& source,
                                       HydraulicVariableSWE& state, ParamCell&) {
  if (!physics::is_wet(state.h, Constants::ZERO_DEPTH)) return;
  const physics::MomentumSource friction = physics::friction_manning(
      n_, state.h, physics::depth_terms(state.h, Constants::ZERO_DEPTH).reciprocal, state.qx,
      state.qy);
  source.set_values_speed(friction.qx, friction.qy);
}
