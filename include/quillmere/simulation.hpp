// A simulation of free-surface flow over terrain as a value: set up, stepped, looked at and acted
// upon by a program of your own.
//
// - Lengths are in m, times in s, discharges in m2/s per metre of width. Nodes, cells and edges are
//   numbered from 0, in the order of the files or arrays of the case.
// - Any number of simulations may live at once, each used by one thread at a time.
// - Nothing is printed, no result file is written, and neither environment nor working directory
//   nor signals of the process are touched. Results have the same bits on any number of threads.
// - What goes wrong is thrown as an Error; a simulation whose step failed is of no use any more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillmere {

/// What was found and what is expected; in a file, at which place.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What every cell has a value of.
enum class Field {
  depth,
  discharge_x,
  discharge_y,
  largest_depth,  ///< so far
  infiltrated_depth,
  bed_level,  ///< with the sediment on it
  sediment_thickness,
  bed_load_x,
  bed_load_y,
  // Maxima since the start, where keep_maxima() has asked for them.
  peak_depth,
  peak_level,  ///< NaN where there never was water
  peak_speed,
  peak_discharge,  ///< which is the largest product of depth and speed, too
  time_of_peak,    ///< of the depth; NaN where there never was any
  arrival_time,    ///< of water deeper than the arrival depth; NaN where there never was
  time_under_water
};

/// What stands on an edge, by the codes of edges files.
enum class EdgeKind {
  interior = -1,
  transmissive = -2,  ///< free outflow
  discharge = -3,     ///< imposed unit discharge, m2/s, positive leaves
  water_level = -4,   ///< imposed level, m
  wall = -5,
  hydrograph = -33,  ///< unit discharge in time
  limnigraph = -44   ///< water level in time
};

/// An edge; its normal, to the right of node 1 to node 2, points out of the left cell.
struct Edge {
  int left = 0;
  int right = -1;  ///< -1: none
  int node1 = 0, node2 = 0;
  EdgeKind kind = EdgeKind::wall;
  double value = 0.0;  ///< that is imposed, m2/s or m
  int series = -1;     ///< number of the time series that imposes it
};

/// A boundary value in time: at least two samples, of increasing times (s).
struct Series {
  std::vector<double> times, values;
};

/// How water is carried over the edges.
enum class Scheme {
  LHLLC,  ///< first order; a depth may fall below zero where thin water runs fast
  HLL1,   ///< first order; no depth below zero, lakes at rest; triangles alone
  HLL2    ///< the same, of second order in space and time
};

/// A case of the hydrodynamic model in plain arrays. Soils, sediments and rain that follows
/// hyetograms need the files of Simulation::open().
struct Case {
  double t_start = 0.0, t_end = 0.0;
  double courant_number = 0.9;
  Scheme scheme = Scheme::LHLLC;
  double zero_depth = 1e-4;  ///< water is strictly deeper

  std::vector<double> x, y, z;           ///< of the nodes
  std::vector<int> cell_nodes;           ///< those of the first cell, of the second, ...
  std::vector<std::int64_t> first_node;  ///< of the cells in cell_nodes, and the end; empty where
                                         ///< all cells are triangles
  std::vector<Edge> edges;               ///< empty: as edges_between() gives them
  std::vector<Series> series;

  std::vector<double> level;    ///< initial free surface
  std::vector<double> qx, qy;   ///< initial unit discharges; empty: none
  std::vector<double> bed;      ///< empty: the mean of the vertices
  std::vector<double> manning;  ///< s/m^(1/3); empty: no friction
};

/// The edges of the cells of a case, one after the other: interior ones, and walls around them.
std::vector<Edge> edges_between(const Case& contents);

struct Options {
  int threads = 0;  ///< at most; 0: one per core. A small mesh takes fewer.
};

/// A mesh in plain arrays, as in Case; first_node is never empty.
struct Mesh {
  std::vector<double> x, y, z;
  std::vector<int> cell_nodes;
  std::vector<std::int64_t> first_node;
  std::vector<Edge> edges;
};

/// All that the further steps of a simulation depend on besides its case.
using State = std::vector<std::byte>;

class Simulation {
 public:
  explicit Simulation(const Case& contents, const Options& options = {});
  /// Reads a case from its data file; relative names in it are found from the working directory, as
  /// by the program. What it says of results is checked for its form and not used.
  static Simulation open(const std::string& data_file, const Options& options = {});
  Simulation(Simulation&&) noexcept;
  Simulation& operator=(Simulation&&) noexcept;
  ~Simulation();

  double start_time() const;
  double end_time() const;
  double time() const;
  /// The step that comes next.
  double time_step() const;
  /// Computed so far.
  long steps() const;
  /// Whether the end time of the case is reached.
  bool is_complete() const;
  /// Computes the next step, which is not shortened to meet any time. An Error after the end.
  void step();
  /// Steps until a time is reached, or the end.
  void run_until(double t);

  Mesh mesh() const;
  int number_of_cells() const;
  int number_of_edges() const;
  /// The first cell that contains a point; -1 if there is none.
  int cell_at(double x, double y) const;
  /// Areas of all cells, m2.
  std::vector<double> areas() const;
  /// The present values of all cells.
  std::vector<double> read(Field field) const;
  void read(Field field, std::span<double> values) const;
  /// What entered through a boundary edge in the last step, m3/s.
  double inflow(int edge) const;
  /// Keeps the maxima of the flow in every cell, from the start on: to be called before the first
  /// step. Cells deeper than `arrival_depth` are under water.
  void keep_maxima(double arrival_depth = 0.05);

  // Between steps. The next step still moves the bed load of the water before.
  /// Sets depths: of all cells, or of those given. Water as shallow as a film loses its discharge,
  /// as at the start of a run.
  void set_depth(std::span<const double> depths);
  void set_depth(std::span<const int> cells, std::span<const double> depths);
  /// Sets unit discharges, which a film of water does not take.
  void set_discharges(std::span<const double> qx, std::span<const double> qy);
  void set_discharges(std::span<const int> cells, std::span<const double> qx,
                      std::span<const double> qy);
  /// From now on a steady rain (m/s) falls on all cells, or steady rains on those given, in place
  /// of what the case says.
  void set_rain(double intensity);
  void set_rain(std::span<const int> cells, std::span<const double> intensities);
  /// From now on a boundary edge that imposes a discharge or a level imposes this one, in place of
  /// the value or the series of the case.
  void set_boundary(int edge, double value);

  /// The state at the present time, and its return, into this simulation or another of the same
  /// case, on any number of threads: the steps that follow have the same bits. Maxima go with it,
  /// if both keep them.
  State save() const;
  void load(const State& state);

  /// What the simulation hardly was meant to be, since the last call.
  std::vector<std::string> take_warnings();

 private:
  class Run;
  explicit Simulation(std::unique_ptr<Run> run);

  std::unique_ptr<Run> run_;
};

}  // namespace quillmere
