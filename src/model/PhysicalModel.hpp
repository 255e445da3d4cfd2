// The model of a run: owns cells, nodes, interfaces and friction terms, and advances one step.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/GenericInterface.hpp"
#include "model/ComputationalCell.hpp"
#include "model/MeshNode.hpp"
#include "sources/FrictionTerm.hpp"
#include "sources/SourceTerm.hpp"
#include "utils/TextScanner.hpp"

class CompiledModel;
class StepWatch;

/// What enters through a boundary edge, m3/s of water and of bed.
struct BoundaryInflow {
  double water = 0.0, bed = 0.0;
};

/// What the steps run on: the name of the path, its threads, and its instruction set.
struct ExecutionPath {
  const char* name;
  int threads;
  const char* instruction_set;
};

/// Snapshot values, a row per cell; written by the snapshot writer alone.
struct CellValueRows {
  std::size_t width = 0;
  std::vector<double> values;

  void allocate(std::size_t rows, std::size_t columns) {
    width = columns;
    values.assign(rows * columns, 0.0);
  }
  double* row(std::size_t i) { return values.data() + i * width; }
};

class PhysicalModel {
 public:
  PhysicalModel();
  virtual ~PhysicalModel();
  PhysicalModel(const PhysicalModel&) = delete;
  PhysicalModel& operator=(const PhysicalModel&) = delete;

  virtual void build_cell(int id, const std::vector<const MeshNode*>& nodes);
  /// Reads level and unit discharges of every cell.
  virtual void setHydrodynamicConditions(utils::TextScanner& file);
  virtual void setSedimentsParam(utils::TextScanner& file);
  virtual void setSedimentsLevel(utils::TextScanner& file);
  /// Hooks for the failure of banks, which no model describes.
  virtual void setBankFailureParam(utils::TextScanner& file);
  virtual void setBankFailureFixedBanks(utils::TextScanner& file);
  /// Builds the interface of an edge. `scheme` is the flux scheme of interior edges (bc -1).
  virtual void build_interface(int scheme, int edge, int left, int right, const MeshNode& node1,
                               const MeshNode& node2, int bc, double value,
                               const std::string& file);
  virtual void computeFiniteVolumeBalance();
  /// Advances every cell by Globals::dt; returns the stable step of the new state, s.
  virtual double computeFlowStep();
  /// Stable step of the whole domain before the Courant factor, s.
  virtual double dtMin();
  /// Finds h0, the largest depth.
  virtual void findH0();
  virtual void calculateCharLengthMin();
  /// Body of the snapshot writer: copies, signals, and writes the table.
  virtual void printPicture(const std::string& name);

  void setFixedBedLevel(utils::TextScanner& file);
  /// Reads Manning coefficients; every cell gets its own friction term.
  void setFriction(utils::TextScanner& file);
  /// Reads an ID per cell and attaches the term that bears it; -1 attaches none.
  void set_source_term_by_ID(utils::TextScanner& file, const std::vector<SourceTerm*>& terms);
  void set_initial_infiltration(utils::TextScanner& file);

  /// Compiles the model, whose set-up must be complete, into tables if they know all it holds; from
  /// then on steps run on them and the objects lag behind until they are published.
  void compile();
  void compile(int threads, int cells_per_patch = 0);
  /// Brings the objects up to date with the tables: all cells, or those given. Waits for a writer
  /// that is copying them.
  void publish();
  void publish(const std::vector<int>& cells);

  /// From now on every step takes notes for a report. To be called before the first one, after
  /// compile().
  void watch_steps();
  const StepWatch& step_watch() const { return *watch; }
  /// The present state of a cell, published or not.
  HydraulicVariableSWE state_of(int cell) const;
  /// What entered through a boundary in the last step; `number` counts the boundaries in the order
  /// of their edges.
  BoundaryInflow boundary_inflow(const GenericInterface& boundary, int number) const;
  ExecutionPath execution_path() const;

  void computeFluxes();
  void computeSourceTerms();

  /// The cell that sets the step: one whose state is not finite, else the one with the smallest
  /// step, or the smallest cell where dry cells set it; null without cells.
  const ComputationalCell* limiting_cell() const;

  std::vector<std::unique_ptr<ComputationalCell>> cells;
  std::vector<MeshNode> mesh_nodes;  ///< cells and interfaces point into it
  std::vector<std::unique_ptr<GenericInterface>> interfaces;
  int n_nodes = 0;
  int n_cells = 0;
  int n_interfaces = 0;
  double h0 = 0.0;               ///< largest initial depth, m
  double char_length_min = 0.0;  ///< m
  CellValueRows cell_value_rows;
  bool has_infiltration = false;
  std::deque<FrictionTerm> friction_terms;  ///< cells point to them
  std::unique_ptr<CompiledModel> engine;    ///< null: the objects run
  std::unique_ptr<StepWatch> watch;         ///< null: no step takes notes

 protected:
  /// The schedule of a step, the same for every model.
  double advance_one_step();
  /// Sources, balance and stable step on the objects.
  double advance_objects();
  /// Attaches a new interface to its cells and gives it the index of its edge.
  void append_interface(std::unique_ptr<GenericInterface> interface, int edge, int left, int right);
  [[noreturn]] static void refuse_boundary_code(int code);
};
