// What the source terms remember of a cell.
#pragma once

struct ParamCell {
  double last_update_time = 0.0;   ///< when rain was last added, s
  int hyetogram_index = -1;        ///< interval of the hyetogram in force; -1: not yet located
  double infiltrated_depth = 0.0;  ///< cumulative, m
  double infiltration_step = 0.0;  ///< depth to infiltrate in this step, m
  double rain_dt = 1e20;           ///< time to the next burst of rain, s
};
