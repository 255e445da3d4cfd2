// The books of a run in m3: what the domain holds, what came and went, and what is left over.
#pragma once

#include <memory>
#include <type_traits>
#include <vector>

#include "case/Case.hpp"
#include "fields/Flow.hpp"
#include "physics/rain.hpp"

using fields::Passed;
using fields::PassedByKind;

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
  double momentum_taken() const { return seen_->volumes().taken_discharge.value(); }

  /// What the books hold so far, but for the rain clocks, which are those of the flow.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.initial_, self.rain_);
    if constexpr (std::is_const_v<Self>) {
      const fields::VolumesSeen now = self.seen_now();
      visit(now.water_passed, now.sediment_passed);
    } else {
      visit(self.water_before_, self.sediment_before_);
    }
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

  /// What is there now, with what has passed the boundaries since the books began.
  fields::VolumesSeen seen_now() const;
  static Stored stored(const fields::VolumesSeen& seen);
  void find_rain(const std::vector<utils::ExactSum>& areas);

  const cases::Case& case_;
  std::unique_ptr<fields::Looks> seen_;
  Stored initial_;
  PassedByKind water_before_{},
      sediment_before_{};  ///< by an earlier run that this one goes on from
  std::vector<RainedCells> rained_;
  utils::ExactSum rain_;
};
