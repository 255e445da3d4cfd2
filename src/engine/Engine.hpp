// The compiled form of the hydrodynamic model: flat tables in an order of their own, and the loops
// of a step over them. It knows nothing of the objects; the bridge fills it and reads it back.
#pragma once

#include <memory>
#include <vector>

#include "engine/ThreadTeam.hpp"
#include "engine/views.hpp"
#include "physics/infiltration.hpp"
#include "physics/rain.hpp"

namespace engine {

enum class BoundaryKind { wall, transmissive, discharge, water_level };

/// The columns of the cells, in the order of the objects at first and then in that of the engine.
struct CellTable {
  std::vector<double> h, qx, qy;            ///< state: m, m2/s
  std::vector<double> eta;                  ///< free-surface level, m
  std::vector<double> max_h, max_u, max_v;  ///< m, m/s
  std::vector<double> zb, max_node;         ///< bed rock and highest vertex, m
  std::vector<double> area, char_length;    ///< m2, m
  std::vector<double> manning;              ///< s/m^(1/3); empty without friction
  std::vector<double> infiltrated;          ///< m
  std::vector<int> slots[3];                ///< 2 edge + (0 left, 1 right); -1: none
};

/// The columns of the edges, likewise.
struct EdgeTable {
  std::vector<int> left, right;  ///< right: -1 on a boundary
  std::vector<double> nx, ny, length;
  std::vector<BoundaryKind> kind;  ///< of a boundary
  std::vector<double> imposed;     ///< unit discharge (m2/s) or depth (m) of a boundary
};

struct RainInput {
  int cell;
  physics::Hyetogram hyetogram;  ///< points to data that outlives the engine
  physics::RainClock clock;
};

struct InfiltrationInput {
  int cell;
  bool is_green_ampt;
  physics::GreenAmptSoil green_ampt;
  physics::HortonSoil horton;
};

/// A model as the bridge describes it.
struct ModelInput {
  std::vector<double> x, y;  ///< centres of the cells, m
  CellTable cells;
  EdgeTable edges;
  std::vector<RainInput> rain;
  std::vector<InfiltrationInput> infiltration;
  double zero_depth = 0.0;
  double char_length_min = 0.0;
  double h0 = 0.0;
};

/// State of one cell, for the objects.
struct CellOutput {
  double h, qx, qy, eta;
  double max_h, max_u, max_v;
  double infiltrated;
};

/// Clock of a step: time and span of the run, and the step (s).
struct StepTimes {
  double t, t_start, t_end, dt;
};

class Engine {
 public:
  /// Takes the tables over; runs on the given number of threads, at least 1.
  Engine(ModelInput&& input, int threads);

  /// Sets the discharge (m2/s) or the depth (m) that a boundary edge imposes.
  void impose(int edge, double value) {
    const int place = edge_number_[static_cast<std::size_t>(edge)];
    edges_.imposed[static_cast<std::size_t>(place)] = value;
  }
  void fluxes();
  /// Sources, balance and dry rules; the stable step of the new state, s.
  double advance(const StepTimes& times);

  CellOutput cell(int object_cell) const;
  int threads() const { return team_.size(); }

 private:
  void number_cells(const std::vector<double>& x, const std::vector<double>& y);
  void number_edges();
  void number_sources();
  void flux_of_boundary(int edge);
  void add_rain(const StepTimes& times);
  void set_infiltration(const StepTimes& times);
  CellColumns cell_columns();
  EdgeColumns edge_columns();

  const Kernels& kernels_;
  ThreadTeam team_;
  double zero_depth_;
  double dry_step_;
  double char_length_min_;
  Sources sources_;

  CellTable cells_;
  EdgeTable edges_;
  std::vector<int> cell_number_;  ///< place of an object's cell in the tables
  std::vector<int> edge_number_;  ///< the same of its edges
  int interior_edges_ = 0;        ///< they come first
  std::vector<double> rain_, demand_;
  std::vector<double> mass_, momentum_x_, momentum_y_;
  std::vector<RainInput> rain_terms_;
  std::vector<InfiltrationInput> infiltration_terms_;
  std::vector<double> smallest_steps_;  ///< one per thread
};

}  // namespace engine
