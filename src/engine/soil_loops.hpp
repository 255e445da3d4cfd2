// The loops over cells with a soil: what it asks for in a step.
#pragma once

#include "engine/views.hpp"
#include "physics/infiltration.hpp"

// Names are internal to each build of kernels.cpp, so that no build runs the instructions of
// another.
namespace engine {
namespace {

/// `infiltration` asks a soil for the demand of a cell of depth h and infiltrated depth F.
template <class Infiltration>
[[gnu::flatten]] void demand_of(const CellColumns& cells, const SoilRange& range,
                                const Infiltration& infiltration) {
  const int soil = range.soil;
  const int* const soils = range.soil_of_cell;
  const double* const depths = cells.h;
  double* const infiltrated = cells.infiltrated;
  double* const demand = range.demand;
#pragma omp simd
  for (int i = range.begin; i < range.end; ++i) {
    const physics::Infiltration of_cell = infiltration(depths[i], infiltrated[i]);
    const bool has_soil = soils[i] == soil;
    demand[i - range.begin] = has_soil ? of_cell.demand : demand[i - range.begin];
    infiltrated[i] = has_soil ? of_cell.infiltrated : infiltrated[i];
  }
}

void green_ampt(const CellColumns& cells, const SoilRange& range,
                const physics::GreenAmptSoil& given, const physics::SoilStep& step_given) {
  const physics::GreenAmptSoil soil = given;  // copies, which the loop cannot change
  const physics::SoilStep step = step_given;
  demand_of(cells, range, [soil, step](double h, double F) {
    return physics::infiltration_green_ampt(soil, step, h, F, 0.0);
  });
}

void horton(const CellColumns& cells, const SoilRange& range, const physics::HortonSoil& given,
            const physics::SoilStep& step_given) {
  const physics::HortonSoil soil = given;
  const physics::SoilStep step = step_given;
  demand_of(cells, range, [soil, step](double h, double F) {
    return physics::infiltration_horton(soil, step, h, F, 0.0);
  });
}

}  // namespace
}  // namespace engine
