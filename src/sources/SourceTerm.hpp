// A contribution to a cell's state that does not come through its edges.
#pragma once

#include "model/HydraulicVariableSWE.hpp"
#include "model/ParamCell.hpp"

/// Terms add a depth (m per step) to source.h, set source.qx and source.qy per unit of g h dt, or
/// leave a demand in param; the cell's update applies them after the balance of fluxes.
class SourceTerm {
 public:
  SourceTerm() = default;
  explicit SourceTerm(int id) : id_(id) {}
  /// `dts`: the term's own step, in whole seconds.
  SourceTerm(int id, int dts) : id_(id), dts_(dts) {}
  virtual ~SourceTerm() = default;

  /// Called once per step and cell, at time t (s), with the state at the start of the step.
  virtual void compute_source_term(double t, HydraulicVariableSWE& source,
                                   HydraulicVariableSWE& state, ParamCell& param) = 0;

  void setID(int id) { id_ = id; }
  int getID() const { return id_; }
  double get_dts() const { return dts_; }

 private:
  int id_ = -1;   ///< links the term to the cells that use it
  int dts_ = -1;  ///< s
};
