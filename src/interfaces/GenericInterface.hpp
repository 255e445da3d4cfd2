// An edge that carries a flux: its geometry, its cells, and its slots in them.
#pragma once

#include <array>
#include <cstddef>

#include "model/ComputationalCell.hpp"
#include "model/MeshNode.hpp"
#include "physics/edge_frame.hpp"
#include "utils/Arena.hpp"

class GenericInterface {
 public:
  /// An edge from node a to node b; the normal, a to b turned clockwise by a right angle, must
  /// point out of the left cell. The right cell is null on a boundary.
  GenericInterface(ComputationalCell* left, ComputationalCell* right, const MeshNode& a,
                   const MeshNode& b);
  virtual ~GenericInterface() = default;
  GenericInterface(const GenericInterface&) = delete;
  GenericInterface& operator=(const GenericInterface&) = delete;

  static void* operator new(std::size_t size) { return arena.allocate(size); }
  static void operator delete(void*) { arena.release(); }

  /// Overwrites the slots of the edge's cells with the flux of their present states.
  virtual void Flux() {}

  // Pointwise formulas at the dry-depth threshold of the run; 0 for a dry depth.
  static double c(double h);
  static double Fr(double q, double h);
  static double Sigma(double q, double h);
  static double Mu(double qn, double qt, double h);

  /// Whether both nodes of the edge are among the two given; identity counts, not coordinates.
  bool With(const MeshNode* node_a, const MeshNode* node_b) const;

  /// Normal and length as the formulas take them.
  physics::Edge edge() const { return {normal.x, normal.y, length}; }

  std::array<const MeshNode*, 2> nodes;
  MeshNode normal;      ///< unit vector, z = 0
  double length = 0.0;  ///< in plan, m
  int tag = 0;          ///< position in the edges file
  ComputationalCell* cell_left;
  ComputationalCell* cell_right;
  std::size_t local_index_left = 0;   ///< of this interface's slot in cell_left
  std::size_t local_index_right = 0;  ///< the same in cell_right

 protected:
  /// The left cell's water in the frame of the edge, over the bed rock.
  physics::EdgeSide left_side() const;
  /// Writes the slot of a cell, without sediment.
  void set_left_slot(const physics::WaterSlot& slot);
  void set_right_slot(const physics::WaterSlot& slot);
  /// Adds the inflow of bed (m3/s) to a slot just written.
  void set_left_bed_slot(double hs);
  void set_right_bed_slot(double hs);

 private:
  /// Never destroyed: a run may end by exit() while cells and edges live.
  static inline utils::Arena& arena = *new utils::Arena;
};

/// A cell's water above its bed rock, as fluxes read it.
physics::CellWater water_above_bed_rock(const ComputationalCell& cell);
