// Time per call of the pure formulas, over a batch of mixed states that stays in cache.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "physics/bed_load_mpm.hpp"
#include "physics/boundary_discharge.hpp"
#include "physics/boundary_transmissive.hpp"
#include "physics/boundary_wall.hpp"
#include "physics/boundary_water_level.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/flux_lhllc.hpp"
#include "physics/friction_manning.hpp"
#include "physics/infiltration.hpp"
#include "physics/stable_step.hpp"
#include "support/formula_loops/formula_loops.hpp"

namespace {

constexpr double zero_depth = 1e-4;
constexpr std::size_t batch = 1024;

/// Wet states around 1 m and 1 m2/s on an uneven bed.
std::vector<physics::CellWater> random_waters() {
  std::mt19937 generator(1);
  std::uniform_real_distribution<double> depth(0.2, 2.0), discharge(-1.0, 1.0), bed(-0.2, 0.2);
  std::vector<physics::CellWater> waters(batch);
  for (auto& w : waters) {
    w = {depth(generator), discharge(generator), discharge(generator), bed(generator), 0.0};
    w.eta = w.zb + w.h;
  }
  return waters;
}

const physics::Edge edge = {0.6, 0.8, 1.0};

void count_calls(benchmark::State& state) {
  state.counters["per call"] =
      benchmark::Counter(static_cast<double>(batch), benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

/// Calls `formula(i)` on the whole batch; the counter is the time of one call.
template <class Formula>
void run_batch(benchmark::State& state, Formula formula) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < batch; ++i) benchmark::DoNotOptimize(formula(i));
  }
  count_calls(state);
}

const std::vector<physics::CellWater> waters = random_waters();

const physics::CellWater& other(std::size_t i) { return waters[(i + 1) % batch]; }

physics::EdgeSide side(std::size_t i) {
  return physics::to_edge_frame(waters[i], edge, zero_depth);
}

void flux_lhllc(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    return physics::flux_lhllc(waters[i], other(i), edge, zero_depth);
  });
}

void flux_clhllc(benchmark::State& state) {
  const physics::CellSediment bed = {0.5, 1e-4, 1e-4, -1e-4};
  run_batch(state, [&](std::size_t i) {
    return physics::flux_clhllc(waters[i], bed, other(i), bed, edge, 0.4, zero_depth);
  });
}

void boundary_wall(benchmark::State& state) {
  run_batch(state, [](std::size_t i) { return physics::boundary_wall(side(i), zero_depth); });
}

void boundary_transmissive(benchmark::State& state) {
  run_batch(state,
            [](std::size_t i) { return physics::boundary_transmissive(side(i), zero_depth); });
}

void boundary_discharge(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    return physics::boundary_discharge(side(i), -0.5, 0.0, zero_depth);
  });
}

void boundary_water_level(benchmark::State& state) {
  run_batch(state,
            [](std::size_t i) { return physics::boundary_water_level(side(i), 1.0, zero_depth); });
}

void friction_manning(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    return physics::friction_manning(0.03, waters[i].h, 1.0 / waters[i].h, waters[i].qx,
                                     waters[i].qy);
  });
}

void update_swe(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    const physics::CellWater& w = waters[i];
    return physics::update_swe({.h = w.h,
                                .qx = w.qx,
                                .qy = w.qy,
                                .Fh = 0.01,
                                .Fqx = 0.02,
                                .Fqy = 0.03,
                                .dt_over_area = 0.1,
                                .dt = 0.05,
                                .rain = 0.0,
                                .source_qx = -1e-4,
                                .source_qy = -1e-4,
                                .infiltration_step = 1e-6,
                                .infiltrated_depth = 0.0,
                                .bed_rock_level = w.zb,
                                .max_node_level = w.zb + 0.1},
                               zero_depth);
  });
}

void stable_step(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    return physics::stable_step(waters[i].h, waters[i].qx, waters[i].qy, 0.3, zero_depth);
  });
}

void infiltration_green_ampt(benchmark::State& state) {
  const physics::GreenAmptSoil soil = {3e-6, 0.11, 0.25, 1.0, 1e-6};
  run_batch(state, [&](std::size_t i) {
    return physics::infiltration_green_ampt(soil, waters[i].h, 0.01, 0.0, 0.1);
  });
}

void infiltration_horton(benchmark::State& state) {
  const physics::HortonSoil soil = {1e-5, 3e-6, 10.0, 1.0, 1e-6};
  run_batch(state, [&](std::size_t i) {
    return physics::infiltration_horton(soil, waters[i].h, 0.01, 0.0, 0.1);
  });
}

void bed_load_mpm(benchmark::State& state) {
  run_batch(state, [](std::size_t i) {
    return physics::bed_load_mpm(waters[i].h, 1.0 / waters[i].h, waters[i].qx, waters[i].qy, 0.03,
                                 {0.001, 2.65});
  });
}

// Loops over arrays: the standard library's functions, which no loop vectorises, against ours.

std::vector<double> random_numbers(double low, double high) {
  std::mt19937 generator(2);
  std::uniform_real_distribution<double> number(low, high);
  std::vector<double> numbers(batch);
  for (double& x : numbers) x = number(generator);
  return numbers;
}

template <class Loop>
void run_loop(benchmark::State& state, Loop loop) {
  const std::vector<double> x = random_numbers(0.01, 5.0);
  std::vector<double> y(batch);
  for (auto _ : state) {
    loop(x.data(), y.data(), batch);
    benchmark::ClobberMemory();
  }
  count_calls(state);
}

template <class Function>
auto loop_of(Function function) {
  return [function](const double* x, double* y, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) y[i] = function(x[i]);
  };
}

template <class Soil>
void run_soil(benchmark::State& state, formula_loops::SoilLoop<Soil> loop, const Soil& soil) {
  const std::vector<double> h = random_numbers(0.01, 2.0);
  std::vector<double> F = random_numbers(0.01, 0.5);
  std::vector<double> D(batch);
  for (auto _ : state) {
    loop(soil, physics::soil_step(soil, 0.1), h.data(), F.data(), D.data(), batch);
    benchmark::ClobberMemory();
  }
  count_calls(state);
}

template <class Run>
void add_benchmark(const std::string& name, Run run) {
  benchmark::RegisterBenchmark(name.c_str(), run);
}

void add_loops() {
  const auto add_loop = [](const std::string& name, auto loop) {
    add_benchmark(name, [loop](benchmark::State& state) { run_loop(state, loop); });
  };
  add_loop("loop/exponential/library", loop_of([](double x) { return std::exp(x); }));
  add_loop("loop/logarithm/library", loop_of([](double x) { return std::log(x); }));
  add_loop("loop/power_2_3/library", loop_of([](double x) { return std::pow(x, 2.0 / 3.0); }));
  for (const formula_loops::Loops& loops : formula_loops::of_this_machine()) {
    const std::string set = loops.instruction_set;
    add_loop("loop/exponential/" + set, loops.exponential);
    add_loop("loop/logarithm/" + set, loops.natural_logarithm);
    add_loop("loop/power_2_3/" + set, loops.power_2_3);
    add_benchmark("loop/green_ampt/" + set, [loops](benchmark::State& state) {
      run_soil(state, loops.green_ampt, {3e-6, 0.11, 0.25, 1.0, 1e-6});
    });
    add_benchmark("loop/horton/" + set, [loops](benchmark::State& state) {
      run_soil(state, loops.horton, {1e-5, 3e-6, 10.0, 1.0, 1e-6});
    });
  }
}

}  // namespace

BENCHMARK(flux_lhllc);
BENCHMARK(flux_clhllc);
BENCHMARK(boundary_wall);
BENCHMARK(boundary_transmissive);
BENCHMARK(boundary_discharge);
BENCHMARK(boundary_water_level);
BENCHMARK(friction_manning);
BENCHMARK(update_swe);
BENCHMARK(stable_step);
BENCHMARK(infiltration_green_ampt);
BENCHMARK(infiltration_horton);
BENCHMARK(bed_load_mpm);

int main(int argc, char** argv) {
  add_loops();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
