#include "report/VolumeLedger.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "globals/Globals.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "model/PhysicalModel.hpp"
#include "model/StepWatch.hpp"
#include "sources/RainTerm.hpp"

namespace {

template <class Class>
bool is_a(const GenericInterface& interface) {
  return dynamic_cast<const Class*>(&interface) != nullptr;
}

/// None for a wall.
std::optional<OpenKind> kind_of(const GenericInterface& interface) {
  if (is_a<HydroBCTransmissive>(interface)) return OpenKind::transmissive;
  if (is_a<HydroBCDischarge>(interface)) return OpenKind::discharge;
  if (is_a<HydroBCWaterLevel>(interface)) return OpenKind::water_level;
  if (is_a<HydroBCHydrograph>(interface)) return OpenKind::hydrograph;
  if (is_a<HydroBCLimnigraph>(interface)) return OpenKind::limnigraph;
  return std::nullopt;
}

}  // namespace

double Books::error() const {
  CompensatedSum sum;
  sum.add(final);
  sum.add(-initial);
  for (const Passed& passed : boundaries) {
    sum.add(-passed.in.value());
    sum.add(passed.out.value());
  }
  sum.add(-rain);
  sum.add(infiltrated);
  sum.add(-created);
  return sum.value();
}

double Books::relative_error() const {
  double in = std::fabs(initial) + rain + created, out = std::fabs(final) + std::fabs(infiltrated);
  for (const Passed& passed : boundaries) {
    in += passed.in.value();
    out += passed.out.value();
  }
  const double turnover = std::max(in, out);
  return turnover == 0.0 ? 0.0 : error() / turnover;
}

VolumeLedger::VolumeLedger(const PhysicalModel& model) : model_(model), initial_(stored()) {
  find_boundaries();
  find_rain();
}

VolumeLedger::Stored VolumeLedger::stored() const {
  CompensatedSum water, soil, sediment;
  for (const auto& cell : model_.cells) {
    water.add(cell->U.h * cell->area);
    soil.add(cell->param.infiltrated_depth * cell->area);
    sediment.add(cell->U.hs * cell->area);
  }
  return {water.value(), soil.value(), sediment.value()};
}

void VolumeLedger::find_boundaries() {
  constexpr std::size_t slots_that_count = 3;  // of a cell, see ComputationalCell::flux_balance
  int number = 0;
  for (const auto& interface : model_.interfaces) {
    if (interface->cell_right != nullptr) continue;
    const auto kind = kind_of(*interface);
    if (kind) {
      const auto k = static_cast<std::size_t>(*kind);
      ++water_passed_[k].edges;
      ++sediment_passed_[k].edges;
      if (interface->local_index_left < slots_that_count) {
        boundaries_.push_back({interface.get(), number, k});
      }
    }
    ++number;
  }
}

void VolumeLedger::find_rain() {
  for (const auto& cell : model_.cells) {
    for (const SourceTerm* source : cell->source_terms) {
      const auto* rain = dynamic_cast<const RainTerm*>(source);
      if (rain == nullptr) continue;
      const auto known = std::find_if(
          rained_.begin(), rained_.end(),
          [&](const RainedCells& cells) { return cells.hyetogram.times == rain->times.data(); });
      if (known != rained_.end()) {
        known->area += cell->area;
        continue;
      }
      const ParamCell& p = cell->param;
      rained_.push_back(
          {rain->hyetogram(), {p.last_update_time, p.hyetogram_index, p.rain_dt}, cell->area});
    }
  }
}

void VolumeLedger::add_step(double t, double dt) {
  for (const OpenBoundary& boundary : boundaries_) {
    const BoundaryInflow inflow = model_.boundary_inflow(*boundary.interface, boundary.number);
    water_passed_[boundary.kind].add(inflow.water * dt);
    sediment_passed_[boundary.kind].add(inflow.bed * dt);
  }
  for (RainedCells& cells : rained_) {
    const physics::RainAddition rain = physics::rain_addition(
        cells.hyetogram, cells.clock, t, Globals_Params::tStart, Globals_Params::tEnd);
    cells.clock = rain.clock;
    rain_.add(rain.depth * cells.area);
  }
}

Books VolumeLedger::water() const {
  const Stored now = stored();
  CompensatedSum recovered;
  for (const auto& cell : model_.cells) {
    recovered.add(model_.step_watch().unseen_depth(cell->id).recovered * cell->area);
  }
  // No rule of the models sets a depth, so none creates water.
  return {.initial = initial_.water,
          .final = now.water,
          .boundaries = water_passed_,
          .rain = rain_.value(),
          .infiltrated = now.soil - initial_.soil + recovered.value()};
}

Books VolumeLedger::sediment() const {
  CompensatedSum lifted;
  for (const auto& cell : model_.cells) {
    lifted.add(model_.step_watch().unseen_depth(cell->id).lifted * cell->area);
  }
  return {.initial = initial_.sediment,
          .final = stored().sediment,
          .boundaries = sediment_passed_,
          .created = lifted.value()};
}
