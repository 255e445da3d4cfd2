// What reports and warnings ask of all cells of a flow at once. Every part of the cells is looked
// at where it is computed, and what was seen of parts is added up: counts, exact sums, and extremes
// of which the cell with the lowest number counts, so that no parts and no order change a bit.
#pragma once

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <variant>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "fields/ColumnSurvey.hpp"
#include "fields/Field.hpp"
#include "physics/cell_geometry.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"
#include "utils/ExactSum.hpp"

namespace fields {

/// Depths below zero, films, and water that soils gave out since the last such look.
struct WaterSeen {
  double lowest_depth = 0.0;    ///< m, at most 0; what is no number does not count
  long films = 0;               ///< cells
  utils::ExactSum given_out;    ///< m3
  double most_given_out = 0.0;  ///< m
  cases::Number cell_of_most = -1;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.lowest_depth, self.films, self.given_out, self.most_given_out, self.cell_of_most);
  }
  void note_given_out(double depth, cases::Number cell);
  void add(const WaterSeen& other);
};

/// The cell of the largest Froude number, of all that are deeper than the dry depth.
struct RapidSeen {
  physics::FlowRecord speed_squared_per_depth;  ///< m/s2

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.speed_squared_per_depth);
  }
  void add(const RapidSeen& other);
};

/// What the states are like, and the centres of those that are no numbers.
struct StatesSeen {
  long wet = 0;
  double speed_squared = 0.0;  ///< largest, m2/s2
  long not_finite = 0;
  utils::ExactSum lost_x, lost_y;  ///< m

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.wet, self.speed_squared, self.not_finite, self.lost_x, self.lost_y);
  }
  void add(const StatesSeen& other);
};

/// Of the cells whose state is no number the one nearest to a point; the first one, where none has
/// a distance.
struct NearestSeen {
  double distance = std::numeric_limits<double>::infinity();  ///< m
  cases::Number cell = -1, first = -1;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.distance, self.cell, self.first);
  }
  void note(double distance_of_cell, cases::Number number);
  void add(const NearestSeen& other);
  cases::Number nearest() const { return cell >= 0 ? cell : first; }
};

/// What bounds the time step.
struct BoundsSeen {
  cases::Number not_finite = -1;          ///< the first cell whose state is no number
  double step = physics::unbounded_step;  ///< s
  cases::Number slowest = -1;             ///< whose step it is
  double length = 0.0;                    ///< smallest characteristic length, m
  cases::Number smallest = -1;            ///< whose length it is
  bool has_dry_cell = false;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.not_finite, self.step, self.slowest, self.length, self.smallest, self.has_dry_cell);
  }
  void note_step(double step_of_cell, cases::Number cell);
  void note_length(double length_of_cell, cases::Number cell);
  void add(const BoundsSeen& other);
};

/// What the boundaries of a kind let pass, m3.
struct Passed {
  int edges = 0;
  utils::ExactSum in, out;

  void add(double volume) { (volume < 0.0 ? out : in).add(std::fabs(volume)); }
  void add(const Passed& other);

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.edges, self.in, self.out);
  }
};

/// In the order of cases::boundary_kinds.
using PassedByKind = std::array<Passed, cases::boundary_kinds.size()>;
void add(PassedByKind& to, const PassedByKind& from);

/// What the cells hold and have held, m3, and what passed their boundaries.
struct VolumesSeen {
  utils::ExactSum water, soil, sediment;
  utils::ExactSum recovered, lifted;           ///< see UnseenDepth
  utils::ExactSum taken_discharge;             ///< m4/s
  PassedByKind water_passed, sediment_passed;  ///< since the steps are watched
  std::vector<utils::ExactSum> rained_area;    ///< by number of hyetogram, m2

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.water, self.soil, self.sediment, self.recovered, self.lifted, self.taken_discharge,
          self.water_passed, self.sediment_passed, self.rained_area);
  }
  void add(const VolumesSeen& other);
};

/// What to look at.
struct Look {
  enum class Kind { water, most_rapid, column, states, nearest_lost, bounds, volumes };
  Kind kind;
  // Of a column: a field, or the sum of the so many fields that begin with it.
  Field field = Field::depth;
  int components = 1;
  physics::PlanPoint point = {};  ///< of nearest_lost
};

/// In the order of the kinds.
using Seen = std::variant<WaterSeen, RapidSeen, ColumnSurvey, StatesSeen, NearestSeen, BoundsSeen,
                          VolumesSeen>;
/// Adds what the same look saw in other cells.
void add(Seen& to, const Seen& other);

/// What the states of all cells are like at one time.
struct FlowSurvey {
  long wet_cells = 0;
  double largest_speed = 0.0;  ///< m/s
  long not_finite = 0;         ///< cells whose depth or discharge is infinite or not a number
  int a_cell_not_finite = -1;  ///< the one nearest to the middle of them
};

/// Looks at a flow: all of it, on however many ranks it is computed.
class Looks {
 public:
  virtual ~Looks() = default;

  virtual Seen see(const Look& look) = 0;
  /// To be called after every step of dt (s), where what passes the boundaries is looked at.
  virtual void add_step(double dt) = 0;

  WaterSeen water() { return std::get<WaterSeen>(see({Look::Kind::water})); }
  RapidSeen most_rapid() { return std::get<RapidSeen>(see({Look::Kind::most_rapid})); }
  ColumnSurvey column(Field first, int components = 1) {
    return std::get<ColumnSurvey>(see({Look::Kind::column, first, components}));
  }
  BoundsSeen bounds() { return std::get<BoundsSeen>(see({Look::Kind::bounds})); }
  FlowSurvey survey();
  VolumesSeen volumes() { return std::get<VolumesSeen>(see({Look::Kind::volumes})); }
};

}  // namespace fields
