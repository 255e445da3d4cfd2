#include "report/cell_json.hpp"

#include <cmath>

nlohmann::ordered_json place_of(const fields::Ground& ground, cases::Number cell) {
  const physics::SpacePoint center = ground.geometry_of(cell).center;
  return {{"cell", cell}, {"centre_m", {center.x, center.y}}};
}

double speed_of(const fields::CellState& state) {
  return state.h != 0.0 ? std::hypot(state.qx, state.qy) / state.h : 0.0;
}
