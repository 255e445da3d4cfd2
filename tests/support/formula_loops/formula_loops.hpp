// Loops over arrays of single formulas, built once per instruction set, as the kernels are.
#pragma once

#include <cstddef>
#include <vector>

#include "physics/infiltration.hpp"

namespace formula_loops {

/// y[i] = formula(x[i]) for i < n.
using Loop = void (*)(const double* x, double* y, std::size_t n);

/// One step of n cells of a soil: h is read, F and D are updated.
template <class Soil>
using SoilLoop = void (*)(const Soil& soil, const physics::SoilStep& step, const double* h,
                          double* F, double* D, std::size_t n);

struct Loops {
  const char* instruction_set;
  Loop exponential, natural_logarithm;
  Loop power_2_3;
  SoilLoop<physics::GreenAmptSoil> green_ampt;
  SoilLoop<physics::HortonSoil> horton;
};

/// The loops of every instruction set that this machine has; the baseline comes first.
std::vector<Loops> of_this_machine();

}  // namespace formula_loops
