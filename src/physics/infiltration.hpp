// Infiltration capacities and the recovery of the soil. Depths in m, times in s.
// Sources: Green and Ampt (1911), J. Agric. Sci. 4; Horton (1940), Soil Sci. Soc. Am. Proc. 5, here
// with a capacity that decays with the infiltrated depth instead of time.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// What a soil asks of a cell in one step: the depth to infiltrate, and the cumulative depth after
/// recovery.
struct Infiltration {
  double demand;
  double infiltrated;
};

struct GreenAmptSoil {
  double Ks;      // saturated hydraulic conductivity, m/s
  double psi;     // suction head at the wetting front, m
  double dtheta;  // moisture deficit
  double Fmax;    // largest cumulative infiltration, m
  double kr;      // recovery rate, 1/s; none when not positive
};

struct HortonSoil {
  double f0;    // initial capacity, m/s
  double fc;    // final capacity, m/s
  double k;     // decay with the infiltrated depth, 1/m
  double Fmax;  // largest cumulative infiltration, m
  double kr;    // recovery rate, 1/s; none when not positive
};

/// Cumulative infiltration (m) after a time tau (s) of ponding on a fresh soil, from the implicit
/// relation F - psi dtheta ln(1 + F / (psi dtheta)) = Ks tau; last iterate if 100 do not suffice.
QM_HD inline double green_ampt_ponded(const GreenAmptSoil& soil, double tau) {
  const double P = soil.psi * soil.dtheta;
  double x = 0.01;
  double result = 0.0;
  for (int i = 0; i < 100; ++i) {
    const double g = x - P * natural_logarithm(1.0 + x / P) - soil.Ks * tau;
    const double slope = x / (P + x);
    result = x - g / slope;
    if (std::fabs(result - x) < 1e-8) break;
    x = result;
  }
  return result;
}

/// Cumulative depth (m) after one step of recovery at rate kr: the mean of F and F plus the step's
/// possible infiltration decays.
QM_HD inline double recovered_depth(double h, double demand, double F, double kr, double dt) {
  if (!(kr > 0.0)) return F;
  const double mean = (minimum_ignoring_nan(h, demand) + F + F) / 2.0;
  const double r = mean * (1.0 - exponential(-kr * dt));
  return r > F ? 0.0 : F - r;
}

/// Demand limited to the room left in the soil (not positive once it is full).
QM_HD inline double limited_demand(double potential, double F, double Fmax) {
  return F + potential > Fmax ? Fmax - F : potential;
}

/// Whether the soil takes part in the step: it has room, or it lies under water.
QM_HD inline bool soil_is_active(double h, double F, double Fmax) { return F < Fmax || h > 0.0; }

/// Green-Ampt: h is the depth at the start of the step, F the cumulative depth, D the demand in
/// force.
QM_HD inline Infiltration infiltration_green_ampt(const GreenAmptSoil& soil, double h, double F,
                                                  double D, double dt) {
  double demand = 0.0;
  if (soil_is_active(h, F, soil.Fmax)) {
    const double Fe = F == 0.0 ? green_ampt_ponded(soil, dt) : F;
    const double potential = soil.Ks * (soil.psi * soil.dtheta / Fe + 1.0) * dt;
    demand = limited_demand(potential, F, soil.Fmax);
    D = demand;
  }
  return {D, recovered_depth(h, demand, F, soil.kr, dt)};
}

/// Horton: as above.
QM_HD inline Infiltration infiltration_horton(const HortonSoil& soil, double h, double F, double D,
                                              double dt) {
  double demand = 0.0;
  if (soil_is_active(h, F, soil.Fmax)) {
    const double rate = soil.fc + (soil.f0 - soil.fc) * exponential(-soil.k * F);
    demand = limited_demand(rate * dt, F, soil.Fmax);
    D = demand;
  }
  return {D, recovered_depth(h, demand, F, soil.kr, dt)};
}

}  // namespace physics
