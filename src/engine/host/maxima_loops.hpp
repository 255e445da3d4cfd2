// The loops that note the present states of cells in what is kept of their largest flow, block by
// block.
#pragma once

#include "engine/host/loops.hpp"
#include "engine/runs.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

/// Cells of a block that a state may change something of, and those under water.
struct NewsOfBlock {
  int speed = 0, discharge = 0, under_water = 0;
};

[[gnu::flatten]] NewsOfBlock news_of_block(kernels::CellColumns cells,
                                           kernels::MaximaColumns maxima, int first, int end,
                                           kernels::MaximaValues values) {
  int speed = 0, discharge = 0, under_water = 0;
#pragma omp simd reduction(+ : speed, discharge, under_water)
  for (int i = first; i < end; ++i) {
    const kernels::MaximaNews of_cell = kernels::news_of_state(cells, maxima, i, values);
    speed += of_cell.speed ? 1 : 0;
    discharge += of_cell.discharge ? 1 : 0;
    under_water += of_cell.is_under ? 1 : 0;
  }
  return {speed, discharge, under_water};
}

[[gnu::flatten]] void note_depths(kernels::CellColumns cells, kernels::MaximaColumns maxima,
                                  int first, int end, double t) {
#pragma omp simd
  for (int i = first; i < end; ++i) kernels::note_depth(cells, maxima, i, t);
}

[[gnu::flatten]] void note_levels(kernels::CellColumns cells, kernels::MaximaColumns maxima,
                                  int first, int end, double zero_depth) {
#pragma omp simd
  for (int i = first; i < end; ++i) kernels::note_level(cells, maxima, i, zero_depth);
}

[[gnu::flatten]] void note_discharges(kernels::CellColumns cells, kernels::MaximaColumns maxima,
                                      int first, int end, double zero_depth) {
#pragma omp simd
  for (int i = first; i < end; ++i) kernels::note_discharge(cells, maxima, i, zero_depth);
}

[[gnu::flatten]] void note_speeds(kernels::CellColumns cells, kernels::MaximaColumns maxima,
                                  int first, int end, double zero_depth) {
#pragma omp simd
  for (int i = first; i < end; ++i) kernels::note_speed(cells, maxima, i, zero_depth);
}

[[gnu::flatten]] void note_times_under_water(kernels::CellColumns cells,
                                             kernels::MaximaColumns maxima, int first, int end,
                                             kernels::MaximaValues values) {
#pragma omp simd
  for (int i = first; i < end; ++i) kernels::note_time_under_water(cells, maxima, i, values);
}

/// Nothing begins or ends where all cells of a block are as they all were.
void note_under_water(const kernels::CellColumns& cells, const kernels::MaximaColumns& maxima,
                      int first, int end, const kernels::MaximaValues& values, int now,
                      kernels::UnderWater& before) {
  using kernels::UnderWater;
  const UnderWater after = now == 0             ? UnderWater::none
                           : now == end - first ? UnderWater::all
                                                : UnderWater::some_or_unknown;
  if (after == before && after != UnderWater::some_or_unknown) return;
  note_times_under_water(cells, maxima, first, end, values);
  before = after;
}

void note_maxima(const kernels::CellColumns& cells, const kernels::MaximaColumns& maxima, int begin,
                 int end, const kernels::MaximaValues& values, kernels::MaximaHint* hints) {
  for (int first = begin; first < end; first += cells_of_block) {
    const int last = end - first < cells_of_block ? end : first + cells_of_block;
    kernels::MaximaHint& hint = hints[first / cells_of_shortest];
    const NewsOfBlock news = news_of_block(cells, maxima, first, last, values);
    if (hint.may_be_deeper) note_depths(cells, maxima, first, last, values.t);
    if (maxima.level != nullptr) note_levels(cells, maxima, first, last, values.zero_depth);
    if (news.discharge > 0) note_discharges(cells, maxima, first, last, values.zero_depth);
    if (news.speed > 0) note_speeds(cells, maxima, first, last, values.zero_depth);
    note_under_water(cells, maxima, first, last, values, news.under_water, hint.under_water);
    hint.may_be_deeper = false;
  }
}

}  // namespace
}  // namespace engine
