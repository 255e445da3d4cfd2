#include "case/AreaLoss.hpp"

#include <cmath>

#include "utils/cell_place.hpp"
#include "utils/number_text.hpp"

void AreaLoss::add(physics::PlanPoint center, double area, double accurate_area) {
  constexpr double tolerated = 1e-6;
  const double loss = physics::area_loss(area, accurate_area);
  const int cell = cells_++;
  if (loss <= tolerated) return;
  ++losing_cells_;
  if (worst_cell_ >= 0 && !(loss > largest_)) return;
  largest_ = loss;
  worst_cell_ = cell;
  worst_center_ = center;
}

void AreaLoss::add(const AreaLoss& next) {
  const int before = cells_;
  cells_ += next.cells_;
  losing_cells_ += next.losing_cells_;
  if (next.worst_cell_ < 0) return;
  if (worst_cell_ >= 0 && !(next.largest_ > largest_)) return;
  largest_ = next.largest_;
  worst_cell_ = before + next.worst_cell_;
  worst_center_ = next.worst_center_;
}

std::optional<std::string> AreaLoss::remark() const {
  if (losing_cells_ == 0) return {};
  const auto near = [](double x) {
    return utils::number_text(std::floor(x / 1000.0) * 1000.0, 15);
  };
  return std::to_string(losing_cells_) + " of " + std::to_string(cells_) +
         " cells lose more than 1e-06 of their area to rounding, as their coordinates are large "
         "beside them: the most, " +
         utils::number_text(largest_, 2) + " of it, cell " +
         utils::cell_place(worst_cell_, worst_center_.x, worst_center_.y) +
         "; an origin near the case helps: quillmere-mesh import --origin " +
         near(worst_center_.x) + "," + near(worst_center_.y);
}
