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

/// A soil of saturated conductivity Ks (m/s), suction head psi (m), initial and saturated moisture
/// content, depth of the layer L (m) and recovery rate kr (1/s).
QM_HD inline GreenAmptSoil green_ampt_soil(double Ks, double psi, double theta_i, double theta_s,
                                           double L, double kr) {
  // Intended: the room in the layer is divided by the saturated content.
  return {Ks, psi, theta_s - theta_i, L * (theta_s - theta_i) / theta_s, kr};
}

struct HortonSoil {
  double f0;    // initial capacity, m/s
  double fc;    // final capacity, m/s
  double k;     // decay with the infiltrated depth, 1/m
  double Fmax;  // largest cumulative infiltration, m
  double kr;    // recovery rate, 1/s; none when not positive
};

/// Cumulative infiltration (m) after a time tau (s) of ponding on a fresh soil, from the implicit
/// relation F - psi dtheta ln(1 + F / (psi dtheta)) = Ks tau; last iterate if 100 do not suffice.
/// It is the same for every cell of a soil.
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

/// Share of its mean depth that a soil loses in a step by recovery at rate kr (1/s); 0 without
/// recovery.
QM_HD inline double recovery_share(double kr, double dt) {
  return kr > 0.0 ? 1.0 - exponential(-kr * dt) : 0.0;
}

/// The factors of a step of dt (s) that are the same for every cell of a soil.
struct SoilStep {
  double dt;
  double recovery;  // recovery_share
  double ponded;    // what a fresh soil takes in the step, m; Green-Ampt alone, where F is 0
};

QM_HD inline SoilStep soil_step(const GreenAmptSoil& soil, double dt) {
  return {dt, recovery_share(soil.kr, dt), green_ampt_ponded(soil, dt)};
}

QM_HD inline SoilStep soil_step(const HortonSoil& soil, double dt) {
  return {dt, recovery_share(soil.kr, dt), 0.0};
}

/// Cumulative depth (m) after one step of recovery at rate kr, of which `share` is the
/// recovery_share: the mean of F and F plus the step's possible infiltration decays.
QM_HD inline double recovered_depth(double h, double demand, double F, double kr, double share) {
  const double mean = (minimum_ignoring_nan(h, demand) + F + F) / 2.0;
  const double r = mean * share;
  const double left = r > F ? 0.0 : F - r;
  return kr > 0.0 ? left : F;
}

/// Demand limited to the room left in the soil (not positive once it is full).
QM_HD inline double limited_demand(double potential, double F, double Fmax) {
  return F + potential > Fmax ? Fmax - F : potential;
}

/// Whether the soil takes part in the step: it has room, or it lies under water.
QM_HD inline bool soil_is_active(double h, double F, double Fmax) { return F < Fmax || h > 0.0; }

/// Demand of a soil with the given potential infiltration (m), and its recovery: h is the depth at
/// the start of the step, F the cumulative depth, D the demand in force, which a soil that takes no
/// part in the step keeps. share: recovery_share.
QM_HD inline Infiltration limited_infiltration(double potential, double Fmax, double kr,
                                               double share, double h, double F, double D) {
  const bool active = soil_is_active(h, F, Fmax);
  const double limited = limited_demand(potential, F, Fmax);
  const double demand = active ? limited : 0.0;
  return {active ? limited : D, recovered_depth(h, demand, F, kr, share)};
}

// The formulas of the two soils take h, F and D as above, and have no branch, so that a loop over
// cells vectorises.

QM_HD inline Infiltration infiltration_green_ampt(const GreenAmptSoil& soil, const SoilStep& step,
                                                  double h, double F, double D) {
  const double Fe = F == 0.0 ? step.ponded : F;
  const double potential = soil.Ks * (soil.psi * soil.dtheta / Fe + 1.0) * step.dt;
  return limited_infiltration(potential, soil.Fmax, soil.kr, step.recovery, h, F, D);
}

QM_HD inline Infiltration infiltration_horton(const HortonSoil& soil, const SoilStep& step,
                                              double h, double F, double D) {
  const double rate = soil.fc + (soil.f0 - soil.fc) * exponential(-soil.k * F);
  return limited_infiltration(rate * step.dt, soil.Fmax, soil.kr, step.recovery, h, F, D);
}

// The same for a single cell and a step of dt.

QM_HD inline Infiltration infiltration_green_ampt(const GreenAmptSoil& soil, double h, double F,
                                                  double D, double dt) {
  const double ponded = F == 0.0 ? green_ampt_ponded(soil, dt) : 0.0;
  return infiltration_green_ampt(soil, {dt, recovery_share(soil.kr, dt), ponded}, h, F, D);
}

QM_HD inline Infiltration infiltration_horton(const HortonSoil& soil, double h, double F, double D,
                                              double dt) {
  return infiltration_horton(soil, soil_step(soil, dt), h, F, D);
}

}  // namespace physics
