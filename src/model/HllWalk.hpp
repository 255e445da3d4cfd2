// A step of the second-order scheme and of its first-order form, cell by cell over the arrays of a
// case on one thread: the plain statement of the schemes.
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "case/hll_cell.hpp"
#include "model/HllForcing.hpp"
#include "physics/hll_bed_load.hpp"

class HllWalk {
 public:
  /// The states of the cells.
  struct Water {
    std::vector<double> h, qx, qy;    ///< m, m2/s
    std::vector<double> max_h;        ///< largest depth so far, m
    std::vector<double> infiltrated;  ///< m
    std::vector<double> recovered;    ///< lost by the soil as it recovered, m
    /// Sizes of what the bound of draining films took away so far, m2/s.
    std::vector<double> taken_discharge;
    std::vector<double> hs, qsx, qsy;  ///< sediment (m) and its bed load (m2/s); empty without
  };

  /// What bounds the step (s), before the Courant factor.
  struct StepBound {
    double step;
    cases::Number cell;  ///< of the wave that does, or that a boundary may send in; -1: nothing
  };

  /// The case must outlive it. Throws std::runtime_error where the scheme cannot take it.
  explicit HllWalk(const cases::Case& contents);

  /// Advances all cells by a step of dt from t, s.
  void advance(double t, double dt);
  /// The bound for a step from t (s). Of several cells of the same speed it is `before`, or else
  /// the first.
  StepBound step_bound(double t, cases::Number before = -1) const;

  const Water& water() const { return water_; }
  const std::vector<physics::RainClock>& rain_clocks() const { return forcing_.rain_clocks(); }
  /// Goes on from these.
  void set_water(Water water, std::vector<physics::RainClock> rain_clocks) {
    water_ = std::move(water);
    forcing_.set_rain_clocks(std::move(rain_clocks));
  }
  /// Level of the bed with its sediment, m.
  double bed(cases::Number cell) const;
  /// What entered through a boundary in the last step, m3/s.
  double inflow(std::size_t boundary) const { return boundary_inflow_[boundary]; }
  /// The same of bed with its pores, m3/s.
  double bed_inflow(std::size_t boundary) const { return boundary_bed_inflow_[boundary]; }
  double char_length_min() const { return char_length_min_; }

 private:
  using Slots = std::array<physics::WaterSlot, 3>;

  void set_initial_water();
  void lay_initial_sediment();
  double manning(cases::Number cell) const;
  physics::BedLoad bed_load(cases::Number cell) const;
  physics::HllBed bed_of_step(cases::Number cell, double dt) const;
  physics::PrimitiveWater primitive_water(cases::Number cell) const;
  physics::HllNeighbour neighbour(cases::Number cell, int side) const;
  physics::HllCellEdges edges_of(cases::Number cell, double dt) const;
  const physics::HllEdgeState& edge_state(cases::Number cell, int side) const;
  void flux_between_cells();
  void flux_over_boundaries(double t);
  void update(cases::Number cell, double dt);
  double bed_flux_of_boundary(std::size_t boundary, const physics::Edge& edge) const;
  void update_bed(cases::Number cell, double dt);

  const cases::Case& case_;
  std::vector<cases::TriangleSides> sides_;
  std::vector<cases::HllCellOfCase> cells_;
  std::vector<int> boundary_side_;  ///< of the boundaries in their cells
  HllForcing forcing_;
  Water water_;
  double char_length_min_;  ///< m
  // Of the step.
  std::vector<physics::PrimitiveWater> primitive_;
  std::vector<physics::HllCellEdges> edges_;
  std::vector<Slots> slots_;
  std::vector<double> boundary_inflow_;  ///< m3/s
  // The same of the bed; those of cells are empty without sediments.
  std::vector<physics::HllBed> beds_;
  std::vector<std::array<double, 3>> bed_slots_;  ///< m3/s
  std::vector<double> boundary_bed_inflow_;       ///< m3/s
};
