#include "sources/HortonTerm.hpp"

#include "globals/Globals.hpp"

HortonTerm::HortonTerm(int id, double f0, double fc, double k, double Fmax, double kr)
    : SourceTerm(id), soil_{.f0 = f0, .fc = fc, .k = k, .Fmax = Fmax, .kr = kr} {}

void HortonTerm::compute_source_term(double, HydraulicVariableSWE&, HydraulicVariableSWE& state,
                                     ParamCell& param) {
  const physics::Infiltration infiltration = physics::infiltration_horton(
      soil_, state.h, param.infiltrated_depth, param.infiltration_step, Globals::dt);
  param.infiltration_step = infiltration.demand;
  param.infiltrated_depth = infiltration.infiltrated;
}
