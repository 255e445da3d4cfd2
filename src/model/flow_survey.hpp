// One look at the whole flow: how much of it is wet, where it is fastest, and whether every state
// is a number. It reads the tables where the model runs on them, and changes nothing.
#pragma once

class PhysicalModel;

struct FlowSurvey {
  long wet_cells = 0;
  double largest_speed = 0.0;  ///< m/s
  long not_finite = 0;         ///< cells whose depth or discharge is infinite or not a number
  int a_cell_not_finite = -1;  ///< the one nearest to the middle of them
};

FlowSurvey survey_flow(const PhysicalModel& model);
