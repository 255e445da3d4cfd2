#include "engine/Engine.hpp"

#include <algorithm>
#include <numeric>

#include "engine/device/make_device_backend.hpp"
#include "engine/host/HllBackend.hpp"
#include "engine/host/HostBackend.hpp"
#include "physics/stable_step.hpp"

namespace engine {

namespace {

std::unique_ptr<PatchBackend> make_host_backend(Tables& tables, ThreadTeam& team,
                                                const Processor& processor) {
  const Loops& loops = loops_for(processor.instruction_set);
  if (tables.hll) return std::make_unique<HllBackend>(tables, team, loops);
  return std::make_unique<HostBackend>(tables, team, loops);
}

Tables make_tables(const cases::Case& contents, const cases::Part* part, ThreadTeam& team,
                   int cells_per_patch, const Processor& processor) {
  const bool is_on_device = processor.device != Device::none;
  if (cells_per_patch == 0 && is_on_device)
    cells_per_patch = device::cells_per_patch(contents.scheme);
  return part != nullptr ? make_tables(*part, team, cells_per_patch)
                         : make_tables(contents, team, cells_per_patch);
}

}  // namespace

Engine::Engine(const cases::Case& contents, int threads, int cells_per_patch,
               const Processor& processor)
    : Engine(contents, nullptr, alone_, threads, cells_per_patch, processor) {}

Engine::Engine(const cases::Part& part, Exchange& exchange, int threads, int cells_per_patch,
               const Processor& processor)
    : Engine(part.contents, &part, exchange, threads, cells_per_patch, processor) {}

Engine::Engine(const cases::Case& contents, const cases::Part* part, Exchange& exchange,
               int threads, int cells_per_patch, const Processor& processor)
    : exchange_(exchange),
      team_(threads),
      tables_(make_tables(contents, part, team_, cells_per_patch, processor)),
      halo_(tables_, exchange_),
      forcing_(contents, tables_),
      activity_(tables_) {
  if (processor.device == Device::none) {
    host_ = make_host_backend(tables_, team_, processor);
  } else {
    device_ =
        device::make_device_backend(processor, tables_, forcing_, activity_, exchange_, team_);
  }
  step_.zero_depth = tables_.zero_depth;
  step_.dry_step = tables_.dry_step;
  step_.porosity = tables_.porosity;
  step_.grains = tables_.grains;
  if (&exchange_ != &alone_) meter_.emplace();
}

bool Engine::advance_alone(RunClock& clock, const StepLimits& limits) {
  const bool is_first_step = !tables_.cells.eta.empty();
  const bool can = device_ && &exchange_ == &alone_ && !notes_ && !is_first_step;
  if (!can) return false;
  device_->advance_alone(step_, limits, clock);
  const std::optional<NotHyperbolic> found = device_->not_hyperbolic();
  agreed_ = {};
  if (found) agreed_.not_hyperbolic = found->edge;
  find_not_hyperbolic();
  return true;
}

double Engine::stable_step(double t) {
  bring_home();
  double smallest = physics::unbounded_step;
  for (std::size_t i = 0; i < at(tables_.owned); ++i) {
    smallest = physics::smaller(smallest, tables_.stable_step_at(i));
  }
  exchange_.start_minimum({.step = bounded_by_boundaries(smallest, t)});
  agreed_ = exchange_.finish_minimum();
  return physics::stable_step_domain(agreed_.step, tables_.char_length_min);
}

double Engine::advance(const StepTimes& times, const Wishes& own) {
  return device_ ? advance_on_device(times, own) : advance_on_host(times, own);
}

double Engine::advance_on_host(const StepTimes& times, const Wishes& own) {
  forcing_.begin_step(times, tables_);
  step_.dt = times.dt;
  step_.rain_depths = forcing_.rain_depths();
  activity_.find(tables_, forcing_.it_rains());
  if (tables_.maxima) {
    tables_.maxima->t = times.t;
    host_->note_maxima(activity_.gone_to_rest());
  }
  if (meter_) meter_->begin_work();
  host_->outer_fluxes(activity_.with_fluxes(), step_);

  // What others wait for comes first; it is on its way while the rest is computed.
  const double of_border = advance_patches(activity_.border_patches());
  if (meter_) meter_->end_work();
  if (host_->works_in_place()) halo_.start(tables_);
  if (meter_) meter_->begin_work();
  const double of_interior = advance_patches(activity_.interior_patches());
  host_->finish_step(activity_);
  if (meter_) {
    meter_->end_work();
    meter_->end_step(cells_of_step());
  }
  if (!host_->works_in_place()) halo_.start(tables_);
  start_minimum(bounded_by_boundaries(physics::smaller(of_border, of_interior), times.t + times.dt),
                own);
  halo_.finish();
  tables_.set_bed_from_sediment(tables_.ghosts());
  tables_.drop_given_surface();
  return agree_on_step();
}

double Engine::advance_on_device(const StepTimes& times, const Wishes& own) {
  if (meter_) meter_->begin_work();
  device_->start_step(times, step_, notes_.get());
  const PackedHalo packed = device_->packed_halo();
  if (meter_) meter_->end_work();
  exchange_.start_halo(packed);
  if (meter_) meter_->begin_work();
  const double smallest = device_->finish_step();
  if (meter_) {
    meter_->end_work();
    meter_->end_step(cells_of_step());
  }
  start_minimum(bounded_by_boundaries(smallest, times.t + times.dt), own);
  exchange_.finish_halo();
  tables_.drop_given_surface();
  device_->take_ghosts();
  return agree_on_step();
}

int Engine::cells_of_step() const {
  int cells = 0;
  for (const int patch : activity_.patches()) {
    cells += tables_.patches.patches[at(patch)].cells.size();
  }
  return cells;
}

double Engine::agree_on_step() {
  agreed_ = notes_ ? finish_uniting() : exchange_.finish_minimum();
  find_not_hyperbolic();
  return physics::stable_step_domain(agreed_.step, tables_.char_length_min);
}

StepMinimum Engine::finish_uniting() {
  const NotedStep of_all = exchange_.finish_uniting();
  StepMinimum minimum = of_all.minimum;
  // Who takes notes will ask what is around a state that was lost.
  if (of_all.notes.not_finite > 0 && notes().not_finite == 0) minimum.pause = -HUGE_VAL;
  notes_->take(of_all);
  return minimum;
}

double Engine::advance_patches(const std::vector<int>& patches) {
  return host_->advance(patches, step_, forcing_.soil_steps(), activity_, notes_.get());
}

double Engine::bounded_by_boundaries(double smallest, double t) {
  if (!tables_.hll) return smallest;
  const int before = notes_ ? notes_->limiting_place(tables_) : -1;
  const BoundaryBound bound = forcing_.boundary_bound(t, tables_, before);
  step_of_bound_ = physics::step_of_crossing_rate(bound.crossing_rate);
  const bool sets_step =
      step_of_bound_ < smallest || (step_of_bound_ == smallest && bound.place == before);
  place_of_bound_ = sets_step ? bound.place : -1;
  return physics::smaller(smallest, step_of_bound_);
}

int Engine::place_of_bound(double step) const {
  return step_of_bound_ == step ? place_of_bound_ : -1;
}

void Engine::start_minimum(double smallest, const Wishes& own) {
  const bool skipped_dry_cells = activity_.patches().size() < tables_.patches.patches.size();
  if (skipped_dry_cells) smallest = physics::smaller(smallest, tables_.dry_step);
  const std::optional<NotHyperbolic> found = backend().not_hyperbolic();
  const StepMinimum minimum = {smallest, own.stop ? -1.0 : 0.0, own.pause,
                               found ? static_cast<double>(found->edge) : HUGE_VAL};
  if (!notes_) return exchange_.start_minimum(minimum);
  exchange_.start_uniting(notes_->of_step(tables_, activity_.patches(), minimum,
                                          place_of_bound(smallest), [&](const Range& places) {
                                            if (device_) device_->bring_home(places);
                                          }));
}

void Engine::find_not_hyperbolic() {
  not_hyperbolic_.reset();
  if (agreed_.not_hyperbolic == HUGE_VAL) return;
  const std::optional<NotHyperbolic> found = backend().not_hyperbolic();
  ignore_not_hyperbolic();
  // An edge between two ranks is found on both.
  if (!found || found->edge != agreed_.not_hyperbolic || found->place >= tables_.owned) return;
  not_hyperbolic_ = found;
  const auto cell = std::find(tables_.place.begin(), tables_.place.end(), found->place);
  not_hyperbolic_->place = tables_.number_of(static_cast<int>(cell - tables_.place.begin()));
}

void Engine::ignore_not_hyperbolic() {
  backend().ignore_not_hyperbolic();
  has_told_not_hyperbolic_ = true;
}

void Engine::set_water(std::span<const cases::Number> cells,
                       std::span<const physics::InitialWater> water) {
  bring_home();
  CellTable& c = tables_.cells;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t place = at(tables_.place[at(cells[i])]);
    c.h[place] = water[i].h;
    c.qx[place] = water[i].qx;
    c.qy[place] = water[i].qy;
    if (!c.eta.empty()) c.eta[place] = c.bed[place] + water[i].h;
  }
  activity_.wake_all();
  if (tables_.maxima) tables_.maxima->forget_hints();
  take_anew();
}

void Engine::impose_on_boundary(int boundary, double value) {
  if (device_) device_->bring_forcing_home();
  forcing_.impose_on_boundary(at(boundary), value);
}

void Engine::impose_rain(std::span<const cases::Number> cells,
                         std::span<const double> intensities) {
  bring_home();
  forcing_.impose_rain(cells, intensities, tables_);
  activity_.find_rain(tables_);
  take_anew();
}

void Engine::read(const Column& column, std::span<double> values) {
  if (device_) device_->bring_home(column);
  team_.run([&](int member) {
    const Range share = share_of(member, team_.size(), values.size());
    for (int k = share.begin; k < share.end; ++k) {
      values[at(k)] = column[at(tables_.place[at(k)])];
    }
  });
}

void Engine::read(const Column& column, std::span<const cases::Number> cells,
                  std::span<double> values) const {
  if (device_) device_->bring_home(column, tables_.places_of(cells));
  for (std::size_t i = 0; i < cells.size(); ++i) {
    values[i] = column[at(tables_.place[at(cells[i])])];
  }
}

std::size_t Engine::place_at_hand(cases::Number cell) const {
  const int place = tables_.place[at(cell)];
  if (device_) device_->bring_home(Range{place, place + 1});
  return at(place);
}

std::vector<char> Engine::busy() {
  constexpr bool it_rains = false;  // as in most steps: rain comes in bursts
  std::vector<double> depths(at(tables_.owned));
  read(tables_.cells.h, depths);
  std::vector<char> busy;
  busy.reserve(depths.size());
  for (std::size_t k = 0; k < depths.size(); ++k) {
    const int patch = tables_.place[k] / tables_.cells_per_patch();
    const bool is_busy =
        physics::is_wet(depths[k], tables_.zero_depth) || activity_.needs_no_water(patch, it_rains);
    busy.push_back(is_busy ? 1 : 0);
  }
  return busy;
}

BoundaryInflow Engine::boundary_inflow(int boundary) const {
  const int number = tables_.boundary_place[at(boundary)];
  if (number < 0) return {};
  // A patch that took no part in the step took nothing in; its slots are older.
  if (!activity_.takes_part(tables_.boundaries[at(number)].cell / tables_.cells_per_patch())) {
    return {};
  }
  if (device_) device_->bring_inflows_home();
  const std::size_t slot = at(tables_.first_boundary_slot() + number);
  return {tables_.outer.mass[slot], tables_.has_bed ? tables_.outer.bed[slot] : 0.0};
}

void Engine::keep_maxima(double arrival_depth) {
  bring_home();
  take_anew();
  tables_.maxima.emplace(tables_.cells.h.size(), tables_.has_bed, arrival_depth);
}

void Engine::note_maxima(double t) {
  if (!tables_.maxima) return;
  tables_.maxima->t = t;
  std::vector<int> all(tables_.patches.patches.size());
  std::iota(all.begin(), all.end(), 0);
  backend().note_maxima(all);
}

void Engine::watch(double t) {
  const double step = stable_step(t);
  notes_ = std::make_unique<StepNotes>(tables_);
  exchange_.start_uniting(notes_->of_present(tables_, step, place_of_bound(agreed_.step)));
  notes_->take(exchange_.finish_uniting());
}

UnseenDepths Engine::unseen_depths(cases::Number cell) const {
  bring_home();
  return notes_->unseen_depths(tables_.place[at(cell)]);
}

}  // namespace engine
