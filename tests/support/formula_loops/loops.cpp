// Built once per instruction set; QUILLMERE_ISA_NAME names the set and the function.
#include "support/formula_loops/formula_loops.hpp"

namespace formula_loops {

namespace {

template <class Formula>
inline void apply(Formula formula, const double* __restrict x, double* __restrict y,
                  std::size_t n) {
#pragma omp simd
  for (std::size_t i = 0; i < n; ++i) y[i] = formula(x[i]);
}

void exponential(const double* x, double* y, std::size_t n) {
  apply([](double v) { return physics::exponential(v); }, x, y, n);
}

void natural_logarithm(const double* x, double* y, std::size_t n) {
  apply([](double v) { return physics::natural_logarithm(v); }, x, y, n);
}

void power_2_3(const double* x, double* y, std::size_t n) {
  apply([](double v) { return physics::power_2_3(v); }, x, y, n);
}

template <class Soil, class Formula>
inline void apply_soil(Formula formula, const Soil soil, const physics::SoilStep step,
                       const double* __restrict h, double* __restrict F, double* __restrict D,
                       std::size_t n) {
#pragma omp simd
  for (std::size_t i = 0; i < n; ++i) {
    const physics::Infiltration s = formula(soil, step, h[i], F[i], D[i]);
    F[i] = s.infiltrated;
    D[i] = s.demand;
  }
}

void green_ampt(const physics::GreenAmptSoil& soil, const physics::SoilStep& step, const double* h,
                double* F, double* D, std::size_t n) {
  apply_soil([](const auto&... x) { return physics::infiltration_green_ampt(x...); }, soil, step, h,
             F, D, n);
}

void horton(const physics::HortonSoil& soil, const physics::SoilStep& step, const double* h,
            double* F, double* D, std::size_t n) {
  apply_soil([](const auto&... x) { return physics::infiltration_horton(x...); }, soil, step, h, F,
             D, n);
}

}  // namespace

#define QUILLMERE_TEXT_OF(name) #name
#define QUILLMERE_TEXT(name) QUILLMERE_TEXT_OF(name)

Loops QUILLMERE_ISA_NAME() {
  return {.instruction_set = QUILLMERE_TEXT(QUILLMERE_ISA_NAME),
          .exponential = exponential,
          .natural_logarithm = natural_logarithm,
          .power_2_3 = power_2_3,
          .green_ampt = green_ampt,
          .horton = horton};
}

}  // namespace formula_loops
