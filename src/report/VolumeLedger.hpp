// The books of a run in m3: what the domain holds, what came and went, and what is left over.
#pragma once

#include <array>
#include <vector>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"
#include "fields/Flow.hpp"
#include "physics/rain.hpp"
#include "report/CompensatedSum.hpp"

/// What the boundaries of a kind let pass, m3.
struct Passed {
  int edges = 0;
  CompensatedSum in, out;

  void add(double volume) { (volume < 0.0 ? out : in).add(std::fabs(volume)); }

  /// The edges are those of the case.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.in, self.out);
  }
};

/// In the order of cases::boundary_kinds.
using PassedByKind = std::array<Passed, cases::boundary_kinds.size()>;

/// The books of what is kept in one stock: the water above the ground, or the sediment with its
/// pores.
struct Books {
  double initial = 0.0, final = 0.0;  ///< m3
  PassedByKind boundaries{};
  double rain = 0.0;         ///< m3
  double infiltrated = 0.0;  ///< m3, what soils that recovered took again counts again
  double created = 0.0;      ///< by rules that set a state, m3

  /// What the domain holds beyond what the books explain, m3.
  double error() const;
  /// The same over the largest volume of the books; 0 where nothing was ever there.
  double relative_error() const;
};

class VolumeLedger {
 public:
  /// To be opened before the first step of a flow that is watched. Flow and case must outlive the
  /// ledger.
  VolumeLedger(const fields::Flow& flow, const cases::Case& contents);

  /// Books a step of dt (s) that began at time t (s), after it was computed.
  void add_step(double t, double dt);

  /// The books up to now.
  Books water() const;
  Books sediment() const;
  /// Momentum that the bound of draining films took away: sizes, over the density, m4/s.
  double momentum_taken() const { return unseen_volume(&fields::UnseenDepth::taken_discharge); }

  /// What the books hold so far, but for the rain clocks, which are those of the flow.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.initial_, self.water_passed_, self.sediment_passed_, self.rain_);
  }
  /// By number of hyetogram.
  void set_rain_clocks(const std::vector<physics::RainClock>& clocks);

 private:
  struct Stored {
    double water, soil, sediment;  ///< m3

    template <class Self, class Visit>
    static void visit_parts(Self& self, const Visit& visit) {
      visit(self.water, self.soil, self.sediment);
    }
  };
  /// Cells that rain alike.
  struct RainedCells {
    int number;  ///< of the hyetogram
    physics::Hyetogram hyetogram;
    physics::RainClock clock;
    double area;  ///< m2
  };
  struct OpenBoundary {
    int number;        ///< among the boundaries of the mesh
    std::size_t kind;  ///< in cases::boundary_kinds
  };

  Stored stored() const;
  /// What all cells hold of a field, times their areas, m3.
  double volume_of(fields::Field field) const;
  double unseen_volume(double fields::UnseenDepth::*depth) const;
  void find_boundaries();
  void add_boundary(int number, bool counts);
  void find_rain();

  const fields::Flow& flow_;
  const cases::Case& case_;
  Stored initial_;
  std::vector<OpenBoundary> boundaries_;
  PassedByKind water_passed_, sediment_passed_;
  std::vector<RainedCells> rained_;
  CompensatedSum rain_;
};
