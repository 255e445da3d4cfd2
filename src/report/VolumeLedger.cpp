#include "report/VolumeLedger.hpp"

#include <algorithm>
#include <cmath>

using cases::at;

double Books::error() const {
  utils::ExactSum sum;
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

VolumeLedger::VolumeLedger(const fields::Flow& flow, const cases::Case& contents)
    : case_(contents), seen_(flow.looks(contents)) {
  const fields::VolumesSeen seen = seen_->volumes();
  initial_ = stored(seen);
  find_rain(seen.rained_area);
}

VolumeLedger::Stored VolumeLedger::stored(const fields::VolumesSeen& seen) {
  return {seen.water.value(), seen.soil.value(), seen.sediment.value()};
}

fields::VolumesSeen VolumeLedger::seen_now() const {
  fields::VolumesSeen seen = seen_->volumes();
  for (std::size_t kind = 0; kind < water_before_.size(); ++kind) {
    for (const auto sum : {&Passed::in, &Passed::out}) {
      (seen.water_passed[kind].*sum).add(water_before_[kind].*sum);
      (seen.sediment_passed[kind].*sum).add(sediment_before_[kind].*sum);
    }
  }
  return seen;
}

void VolumeLedger::find_rain(const std::vector<utils::ExactSum>& areas) {
  for (std::size_t number = 0; number < areas.size(); ++number) {
    rained_.push_back({static_cast<int>(number), case_.rain[number].intervals(),
                       physics::clock_before_rain(case_.t_start), areas[number].value()});
  }
}

void VolumeLedger::set_rain_clocks(const std::vector<physics::RainClock>& clocks) {
  for (RainedCells& cells : rained_) cells.clock = clocks[at(cells.number)];
}

void VolumeLedger::add_step(double t, double dt) {
  seen_->add_step(dt);
  for (RainedCells& cells : rained_) {
    const physics::RainAddition rain =
        physics::rain_addition(cells.hyetogram, cells.clock, t, case_.t_start, case_.t_end);
    cells.clock = rain.clock;
    rain_.add(rain.depth * cells.area);
  }
}

Books VolumeLedger::water() const {
  const fields::VolumesSeen now = seen_now();
  // No rule of the models sets a depth, so none creates water.
  return {.initial = initial_.water,
          .final = now.water.value(),
          .boundaries = now.water_passed,
          .rain = rain_.value(),
          .infiltrated = now.soil.value() - initial_.soil + now.recovered.value()};
}

Books VolumeLedger::sediment() const {
  const fields::VolumesSeen now = seen_now();
  return {.initial = initial_.sediment,
          .final = now.sediment.value(),
          .boundaries = now.sediment_passed,
          .created = now.lifted.value()};
}
