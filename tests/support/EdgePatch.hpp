// An edge with one triangle on either side, for tests of a single interface.
#pragma once

#include <array>
#include <vector>

#include "interfaces/GenericInterface.hpp"
#include "model/CellSWE.hpp"

namespace support {

class EdgePatch {
 public:
  /// An edge from a to b. The apexes of the triangles stand off its middle by its length; the one
  /// of the left triangle against the normal.
  EdgePatch(const MeshNode& a, const MeshNode& b)
      : nodes_{a, b, apex(a, b, -1.0), apex(a, b, 1.0)},
        left_(0, {&nodes_[0], &nodes_[1], &nodes_[2]}),
        right_(1, {&nodes_[0], &nodes_[1], &nodes_[3]}) {}
  EdgePatch(const EdgePatch&) = delete;
  EdgePatch& operator=(const EdgePatch&) = delete;

  const MeshNode& a() const { return nodes_[0]; }
  const MeshNode& b() const { return nodes_[1]; }
  ComputationalCell& left() { return left_; }
  ComputationalCell& right() { return right_; }

  /// Attaches an interface to its cells, behind `before` other slots of theirs.
  static void attach(GenericInterface& interface, std::size_t before = 0) {
    for (ComputationalCell* cell : {interface.cell_left, interface.cell_right}) {
      if (cell == nullptr) continue;
      cell->fluxes.resize(before);
      cell->interfaces.resize(before);
      cell->add_interface(&interface);
    }
    interface.local_index_left = before;
    interface.local_index_right = before;
  }

 private:
  static MeshNode apex(const MeshNode& a, const MeshNode& b, double side) {
    return {(a.x + b.x) / 2.0 + side * (b.y - a.y), (a.y + b.y) / 2.0 + side * (a.x - b.x), 0.0};
  }

  std::array<MeshNode, 4> nodes_;
  CellSWE left_;
  CellSWE right_;
};

/// Gives a cell a bed (m), a depth (m) of water above it, and unit discharges (m2/s).
inline void set_water(ComputationalCell& cell, double zb, double h, double qx, double qy) {
  cell.set_bed_rock_level(zb);
  cell.U.set_values(h, qx, qy);
  cell.free_surface_level = zb + h;
}

}  // namespace support
