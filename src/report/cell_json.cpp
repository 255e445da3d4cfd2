#include "report/cell_json.hpp"

#include <cmath>

nlohmann::ordered_json place_of(const ComputationalCell& cell) {
  return {{"cell", cell.id}, {"centre_m", {cell.center.x, cell.center.y}}};
}

double speed_of(const HydraulicVariableSWE& state) {
  return state.h != 0.0 ? std::hypot(state.qx, state.qy) / state.h : 0.0;
}
