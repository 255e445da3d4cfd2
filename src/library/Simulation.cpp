// What a program asks of a simulation: checked, and passed on.
#include <cmath>
#include <numeric>

#include "case/boundary_kinds.hpp"
#include "library/Run.hpp"
#include "library/mesh_of_case.hpp"
#include "library/require.hpp"

namespace quillmere {

namespace {

using cases::at;
using cases::Number;

/// What fails inside is an Error outside.
template <class Work>
auto guarded(const Work& work) {
  try {
    return work();
  } catch (const Error&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw Error(error.what());
  }
}

std::vector<Number> all_cells(const cases::Case& contents) {
  std::vector<Number> cells(at(contents.mesh.n_cells()));
  std::iota(cells.begin(), cells.end(), 0);
  return cells;
}

void require_cells(std::span<const int> cells, const cases::Case& contents) {
  for (const int cell : cells) require_index("cell", cell, contents.mesh.n_cells());
}

/// The number of the boundary on an edge.
int boundary_on(int edge, const cases::Mesh& mesh) {
  require_index("edge", edge, mesh.n_edges());
  const cases::Boundary* const boundary = mesh.boundary_on(edge);
  if (boundary == nullptr) {
    refuse("edge " + std::to_string(edge), "one between two cells", "a boundary");
  }
  return static_cast<int>(boundary - mesh.boundaries.data());
}

}  // namespace

Simulation::Simulation(const Case& contents, const Options& options)
    : Simulation(guarded([&] { return std::make_unique<Run>(contents, options); })) {}

Simulation::Simulation(std::unique_ptr<Run> run) : run_(std::move(run)) {}
Simulation::Simulation(Simulation&&) noexcept = default;
Simulation& Simulation::operator=(Simulation&&) noexcept = default;
Simulation::~Simulation() = default;

Simulation Simulation::open(const std::string& data_file, const Options& options) {
  return Simulation(guarded([&] { return std::make_unique<Run>(data_file, options); }));
}

double Simulation::start_time() const { return run_->contents().t_start; }

double Simulation::end_time() const { return run_->contents().t_end; }

double Simulation::time() const { return run_->clock().t; }

double Simulation::time_step() const { return run_->clock().dt; }

long Simulation::steps() const { return run_->clock().steps; }

bool Simulation::is_complete() const { return run_->is_complete(); }

void Simulation::step() {
  guarded([&] { run_->step(); });
}

void Simulation::run_until(double t) {
  if (std::isnan(t)) refuse("time", "nan", "a number");
  while (!is_complete() && time() < t) step();
}

Mesh Simulation::mesh() const { return mesh_of(run_->contents().mesh); }

int Simulation::number_of_cells() const { return run_->contents().mesh.n_cells(); }

int Simulation::number_of_edges() const { return run_->contents().mesh.n_edges(); }

int Simulation::cell_at(double x, double y) const { return run_->cell_at(x, y); }

std::vector<double> Simulation::areas() const { return run_->contents().mesh.areas(); }

std::vector<double> Simulation::read(Field field) const {
  std::vector<double> values(at(number_of_cells()));
  read(field, values);
  return values;
}

void Simulation::read(Field field, std::span<double> values) const {
  const auto number = static_cast<std::size_t>(field);
  if (number >= fields::field_table.size()) refuse("field", "none", "one of Field");
  require_count("field", values.size(), at(number_of_cells()));
  const fields::FieldInfo& info = fields::field_table[number];
  if (fields::is_of_maxima(info)) {
    if (!run_->flow().keeps_maxima()) {
      throw Error("The " + std::string(info.quantity) + " is not kept: ask by keep_maxima().");
    }
    run_->note_maxima();
  }
  run_->flow().read(info.field, values);
}

double Simulation::inflow(int edge) const {
  return run_->inflow(boundary_on(edge, run_->contents().mesh));
}

void Simulation::set_depth(std::span<const double> depths) {
  set_depth(all_cells(run_->contents()), depths);
}

void Simulation::set_depth(std::span<const int> cells, std::span<const double> depths) {
  require_cells(cells, run_->contents());
  require_count("depths", depths.size(), cells.size());
  for (const double depth : depths) require_positive_or_zero("depth", depth);
  constexpr double no_bed = 0.0;
  std::vector<physics::InitialWater> water;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const fields::CellState state = run_->flow().state(cells[i]);
    water.push_back(
        physics::initial_water(depths[i], no_bed, state.qx, state.qy, run_->contents().zero_depth));
  }
  run_->set_water(cells, water);
}

void Simulation::set_discharges(std::span<const double> qx, std::span<const double> qy) {
  set_discharges(all_cells(run_->contents()), qx, qy);
}

void Simulation::set_discharges(std::span<const int> cells, std::span<const double> qx,
                                std::span<const double> qy) {
  require_cells(cells, run_->contents());
  require_count("discharges qx", qx.size(), cells.size());
  require_count("discharges qy", qy.size(), cells.size());
  for (const double q : qx) require_finite("discharge qx", q);
  for (const double q : qy) require_finite("discharge qy", q);
  constexpr double no_bed = 0.0;
  std::vector<physics::InitialWater> water;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const double h = run_->flow().state(cells[i]).h;
    water.push_back(physics::initial_water(h, no_bed, qx[i], qy[i], run_->contents().zero_depth));
  }
  run_->set_water(cells, water);
}

void Simulation::set_rain(double intensity) {
  const std::vector<Number> cells = all_cells(run_->contents());
  set_rain(cells, std::vector<double>(cells.size(), intensity));
}

void Simulation::set_rain(std::span<const int> cells, std::span<const double> intensities) {
  require_cells(cells, run_->contents());
  require_count("rain", intensities.size(), cells.size());
  for (const double intensity : intensities) require_positive_or_zero("rain", intensity);
  run_->set_rain(cells, intensities);
}

void Simulation::set_boundary(int edge, double value) {
  const cases::Mesh& mesh = run_->contents().mesh;
  const int boundary = boundary_on(edge, mesh);
  const cases::BoundaryKind& kind = *cases::boundary_kind(mesh.boundaries[at(boundary)].code);
  if (!kind.imposes_discharge() && !kind.imposes_level()) {
    refuse("edge " + std::to_string(edge), std::string("the boundary ") + kind.name,
           "one that imposes a discharge or a level");
  }
  require_finite("boundary", value);
  run_->set_boundary(boundary, value);
}

void Simulation::keep_maxima(double arrival_depth) {
  require_positive_or_zero("arrival depth", arrival_depth);
  guarded([&] { run_->keep_maxima(arrival_depth); });
}

State Simulation::save() const { return run_->save(); }

void Simulation::load(const State& state) {
  guarded([&] { run_->load(state); });
}

std::vector<std::string> Simulation::take_warnings() { return run_->warnings().take(); }

}  // namespace quillmere
