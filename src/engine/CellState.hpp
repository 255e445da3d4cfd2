// The state of a cell, as reports and outputs look at it.
#pragma once

namespace engine {

/// All that the next step makes of a cell.
struct CellState {
  double h = 0.0, qx = 0.0, qy = 0.0;     ///< m, m2/s
  double hs = 0.0, qsx = 0.0, qsy = 0.0;  ///< sediment: m, m2/s
  double dqs_dh = 0.0;       ///< derivative of the bed load with respect to the depth, m/s
  double bed_level = 0.0;    ///< m
  double water_level = 0.0;  ///< m

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.h, self.qx, self.qy, self.hs, self.qsx, self.qsy, self.dqs_dh, self.bed_level,
          self.water_level);
  }
};

}  // namespace engine
