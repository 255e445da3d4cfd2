// What a run asks of its mesh besides steps: how large it is, where single cells and edges lie, and
// what surrounds a cell. Whoever has the mesh answers, so that nobody needs all of it.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "case/Case.hpp"
#include "case/PointLocator.hpp"

namespace fields {

using cases::MeshCounts;

/// An edge with its ends and its boundary condition, which names no edge; none on an interior one.
struct GroundEdge {
  cases::Number number = -1;
  cases::Number left = -1, right = -1;         ///< cells; right: -1 without one
  physics::SpacePoint node1 = {}, node2 = {};  ///< m
  std::optional<cases::Boundary> condition = {};

  physics::Edge geometry() const {
    return physics::edge_between({node1.x, node1.y}, {node2.x, node2.y});
  }

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.number, self.left, self.right, self.node1.x, self.node1.y, self.node1.z,
          self.node2.x, self.node2.y, self.node2.z, self.condition);
  }
};

/// A cell with its corners.
struct GroundCell {
  cases::Number number = -1;
  std::vector<double> x, y, z;     ///< of its nodes, m
  std::optional<double> bed = {};  ///< of cases::CellFields, m
  double manning = 0.0;            ///< s/m^(1/3)

  cases::CellGeometry geometry() const;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.number, self.x, self.y, self.z, self.bed, self.manning);
  }
};

/// Edges, and the cells at both sides of them; each ascending by their numbers.
struct Surroundings {
  std::vector<GroundEdge> edges;
  std::vector<GroundCell> cells;

  const GroundEdge& edge(cases::Number number) const;
  const GroundCell& cell(cases::Number number) const;
  /// Takes in what another part of the mesh has; what both have comes once.
  void add(Surroundings other);

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.edges, self.cells);
  }
};

/// An edge or cell of a case under its number there.
GroundEdge ground_edge(const cases::Mesh& mesh, cases::Number edge);
GroundCell ground_cell(const cases::Case& contents, cases::Number cell);

/// Cells, edges and nodes have their numbers in the files. To be asked while the flow takes
/// questions.
class Ground {
 public:
  virtual ~Ground() = default;

  virtual MeshCounts counts() const = 0;
  virtual cases::CellGeometry geometry_of(cases::Number cell) const = 0;
  /// In the order of these numbers, each of which may come more than once.
  virtual std::vector<GroundEdge> edges(std::span<const cases::Number> numbers) const = 0;
  /// The first cell, in the order of the file, that contains each point, as PointLocator finds it;
  /// -1 where there is none.
  virtual std::vector<cases::Number> cells_at(std::span<const physics::PlanPoint> points) const = 0;
  /// All edges of these cells.
  virtual Surroundings around(std::span<const cases::Number> cells) const = 0;
};

/// Of a case that this process has alone.
class WholeGround final : public Ground {
 public:
  /// The case must outlive it.
  explicit WholeGround(const cases::Case& contents) : case_(contents) {}

  MeshCounts counts() const override { return case_.mesh.counts(); }
  cases::CellGeometry geometry_of(cases::Number cell) const override;
  std::vector<GroundEdge> edges(std::span<const cases::Number> numbers) const override;
  std::vector<cases::Number> cells_at(std::span<const physics::PlanPoint> points) const override;
  Surroundings around(std::span<const cases::Number> cells) const override;

 private:
  const cases::Case& case_;
  mutable std::unique_ptr<PointLocator> locator_;  ///< from the first point on
};

}  // namespace fields
