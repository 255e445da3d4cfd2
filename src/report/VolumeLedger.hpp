// The books of a run in m3: what the domain holds, what came and went, and what is left over.
#pragma once

#include <array>
#include <vector>

#include "physics/rain.hpp"
#include "report/CompensatedSum.hpp"

class GenericInterface;
class PhysicalModel;

/// What the boundaries of a kind let pass, m3.
struct Passed {
  int edges = 0;
  CompensatedSum in, out;

  void add(double volume) { (volume < 0.0 ? out : in).add(std::fabs(volume)); }
};

/// The kinds of boundaries that anything can pass.
enum class OpenKind { transmissive, discharge, water_level, hydrograph, limnigraph };
inline constexpr std::array<const char*, 5> open_kind_names = {
    "transmissive", "discharge", "water_level", "hydrograph", "limnigraph"};
using PassedByKind = std::array<Passed, open_kind_names.size()>;

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
  /// To be opened before the first step, while the objects are up to date. The model must watch
  /// its steps.
  explicit VolumeLedger(const PhysicalModel& model);

  /// Books a step of dt (s) that began at time t (s), after it was computed.
  void add_step(double t, double dt);

  /// The books up to now; the objects must be up to date.
  Books water() const;
  Books sediment() const;

 private:
  struct Stored {
    double water, soil, sediment;  ///< m3
  };
  /// Cells that rain alike.
  struct RainedCells {
    physics::Hyetogram hyetogram;
    physics::RainClock clock;
    double area;  ///< m2
  };
  struct OpenBoundary {
    const GenericInterface* interface;
    int number;  ///< among the boundaries of the model
    std::size_t kind;
  };

  Stored stored() const;
  void find_boundaries();
  void find_rain();

  const PhysicalModel& model_;
  Stored initial_;
  std::vector<OpenBoundary> boundaries_;
  PassedByKind water_passed_, sediment_passed_;
  std::vector<RainedCells> rained_;
  CompensatedSum rain_;
};
