// A polygonal cell: geometry, state, flux slots and attached source terms.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

#include "model/FluxSlots.hpp"
#include "model/HydraulicVariableSWE.hpp"
#include "model/MeshNode.hpp"
#include "model/ParamCell.hpp"
#include "utils/Arena.hpp"
#include "utils/SmallVector.hpp"

class GenericInterface;
class SourceTerm;

class ComputationalCell {
 public:
  /// Builds a cell on at least three vertices, in either orientation; they must outlive it.
  explicit ComputationalCell(const std::vector<const MeshNode*>& vertices);
  ComputationalCell(int index, const std::vector<const MeshNode*>& vertices);

  /// Cells are deleted through this class, which has no virtual destructor: derived cells add no
  /// members, so this destructor is the whole one. The destroying form makes that well defined.
  static void operator delete(ComputationalCell* cell, std::destroying_delete_t) {
    cell->~ComputationalCell();
    arena.release();
  }
  static void* operator new(std::size_t size) { return arena.allocate(size); }

  /// Applies one explicit step from the flux slots and the sources.
  virtual void Update() {}

  // --- Geometry ---
  int number_of_nodes() const { return n_nodes; }
  const MeshNode* get_node(int i) const { return nodes[static_cast<std::size_t>(i)]; }
  int next_node_index(int i) const { return i < n_nodes - 1 ? i + 1 : 0; }
  int previous_node_index(int i) const { return i < 1 ? n_nodes - 1 : i - 1; }
  const MeshNode* next_node(int i) const { return get_node(next_node_index(i)); }
  const MeshNode* previous_node(int i) const { return get_node(previous_node_index(i)); }
  /// Mean of the vertices; not the centroid of the area.
  MeshNode compute_center() const;
  /// Sum of the absolute areas of the fan of triangles around the centre, m2.
  double compute_area() const;
  /// The same, from differences to the first vertex.
  double accurate_area() const;
  double compute_perimeter() const;

  // --- Interfaces ---
  /// Attaches an interface and gives it a slot.
  void add_interface(GenericInterface* interface);
  /// Orders the interfaces by edge index. Slots do not move: they are still zero.
  void sort_interfaces_by_tag();
  /// Tells every interface which slot of this cell is its own.
  void set_local_index_to_edges();

  // --- State ---
  HydraulicVariableSWE& UVal() { return U; }
  const HydraulicVariableSWE& UVal() const { return U; }
  /// Initial state from a free-surface level (m) and unit discharges (m2/s); the depth is counted
  /// from bed_level, so bed and sediments come first.
  void set_hydrodynamic_values(double zs, double qx, double qy);
  /// Sets the bed rock and drops any sediment offset of the bed.
  void set_bed_rock_level(double z);
  /// Lays sediment of thickness hs (m) on the bed.
  void set_hs(double hs);
  void set_friction(double n) { friction = n; }
  /// Attaches a term, which must outlive the cell; several cells may share it.
  void add_source_term(SourceTerm* term) { source_terms.push_back(term); }
  /// Lets every attached term write into S and param, in order of attachment.
  void compute_source();
  /// Stable step before the Courant factor, s; 1e20 when dry.
  double dtMin() const;
  /// Sum of the first three slots.
  HydraulicVariableSWE flux_balance() const;

  FluxSlots fluxes;  ///< one slot per interface, inflow times edge length
  utils::SmallVector<GenericInterface*, 3> interfaces;
  HydraulicVariableSWE max_values;  ///< h: largest depth; qx, qy: fastest velocity (m/s)
  MeshNode center;                  ///< mean of the vertices
  double bed_rock_level;            ///< fixed bed, m
  double bed_level;                 ///< bed with its sediment layer, m
  double free_surface_level = 0.0;  ///< m
  double perimeter;                 ///< m
  double area;                      ///< m2
  double char_length;               ///< 2 area / perimeter, m
  double dqs_dh = 0.0;              ///< derivative of the bed load with respect to depth, m/s
  int id = 0;
  int n_nodes;
  ParamCell param;
  HydraulicVariableSWE U;  ///< conserved state
  HydraulicVariableSWE S;  ///< sources of the step; emptied by Update()
  utils::SmallVector<const MeshNode*, 3> nodes;
  utils::SmallVector<SourceTerm*, 2> source_terms;
  double friction = 0.0;  ///< Manning coefficient, s/m^(1/3)
  double max_node_level;  ///< m
  double min_node_level;  ///< m

 private:
  /// Never destroyed: a run may end by exit() while cells and edges live.
  static inline utils::Arena& arena = *new utils::Arena;
};
