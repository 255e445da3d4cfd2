#include "sources/GreenAmptTerm.hpp"

#include "globals/Globals.hpp"

GreenAmptTerm::GreenAmptTerm(int id, double Ks, double psi, double theta_i, double theta_s,
                             double L, double kr)
    : SourceTerm(id), soil_(physics::green_ampt_soil(Ks, psi, theta_i, theta_s, L, kr)) {}

double GreenAmptTerm::newton_raphson(double time_span) const {
  return physics::green_ampt_ponded(soil_, time_span);
}

void GreenAmptTerm::compute_source_term(double, HydraulicVariableSWE&, HydraulicVariableSWE& state,
                                        ParamCell& param) {
  const physics::Infiltration infiltration = physics::infiltration_green_ampt(
      soil_, state.h, param.infiltrated_depth, param.infiltration_step, Globals::dt);
  param.infiltration_step = infiltration.demand;
  param.infiltrated_depth = infiltration.infiltrated;
}
