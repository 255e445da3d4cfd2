// What the soil of a cell asks for in a step, and what is noted of a step for a report.
#pragma once

#include "engine/device/TableView.hpp"
#include "kernels/soil.hpp"

namespace engine::device {

/// Columns over the cells, null where nothing of the kind happens in them, see StepNotes.
struct NotesView {
  bool are_taken;
  double *recovered, *lifted;  ///< m
  double* taken_discharge;     ///< m2/s
};

/// What the soil of cell i asks for, m; 0 without one. Lets it recover, which is noted.
QM_HD inline double demand_of(const TableView& tables, const physics::SoilStep* soil_steps,
                              const NotesView& notes, int i) {
  const kernels::CellColumns& cells = tables.cells;
  const int number = cells.soil[i];
  if (number < 0) return 0.0;
  const Soil& soil = tables.soils[number];
  const physics::SoilStep& step = soil_steps[number];
  const double before = cells.infiltrated[i];
  const double demand = soil.is_green_ampt
                            ? kernels::demand_of_soil(cells, i, number, soil.green_ampt, step, 0.0)
                            : kernels::demand_of_soil(cells, i, number, soil.horton, step, 0.0);
  if (notes.are_taken) notes.recovered[i] += before - cells.infiltrated[i];
  return demand;
}

}  // namespace engine::device
