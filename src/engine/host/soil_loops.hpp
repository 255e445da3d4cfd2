// The loops over cells with a soil: what it asks for in a step.
#pragma once

#include "engine/host/loops.hpp"
#include "kernels/soil.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

template <class Soil>
[[gnu::flatten]] void demand(const kernels::CellColumns& given_cells, const SoilRange& given_range,
                             const Soil& given_soil, const physics::SoilStep& given_step) {
  const kernels::CellColumns cells = given_cells;  // copies, which the loop cannot change
  const SoilRange range = given_range;
  const Soil soil = given_soil;
  const physics::SoilStep step = given_step;
#pragma omp simd
  for (int i = range.begin; i < range.end; ++i) {
    const int k = i - range.begin;
    range.demand[k] = kernels::demand_of_soil(cells, i, range.soil, soil, step, range.demand[k]);
  }
}

}  // namespace
}  // namespace engine
