#include "report/cell_json.hpp"

#include <cmath>

nlohmann::ordered_json place_of(cases::Number cell, const cases::CellGeometry& geometry) {
  return {{"cell", cell}, {"centre_m", {geometry.center.x, geometry.center.y}}};
}

double speed_of(const fields::CellState& state) {
  return state.h != 0.0 ? std::hypot(state.qx, state.qy) / state.h : 0.0;
}
