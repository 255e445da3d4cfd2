// The model of a run: owns cells, nodes, interfaces and friction terms, and advances one step.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "interfaces/GenericInterface.hpp"
#include "model/ComputationalCell.hpp"
#include "model/MeshNode.hpp"
#include "model/StepObserver.hpp"
#include "sources/FrictionTerm.hpp"
#include "sources/SourceTerm.hpp"
#include "utils/TextScanner.hpp"

/// Snapshot values, a row per cell.
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
  PhysicalModel() = default;
  virtual ~PhysicalModel() = default;
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
  /// Writes the present states of the cells as a snapshot.
  virtual void printPicture(const std::string& name);

  void setFixedBedLevel(utils::TextScanner& file);
  /// Reads Manning coefficients; every cell gets its own friction term.
  void setFriction(utils::TextScanner& file);
  /// Reads an ID per cell and attaches the term that bears it; -1 attaches none.
  void set_source_term_by_ID(utils::TextScanner& file, const std::vector<SourceTerm*>& terms);
  void set_initial_infiltration(utils::TextScanner& file);

  void computeFluxes();
  void computeSourceTerms();

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
  StepObserver* observer = nullptr;         ///< of every step; null: none

 protected:
  /// The schedule of a step, the same for every model.
  double advance_one_step();
  /// Attaches a new interface to its cells and gives it the index of its edge.
  void append_interface(std::unique_ptr<GenericInterface> interface, int edge, int left, int right);
  [[noreturn]] static void refuse_boundary_code(int code);
};
