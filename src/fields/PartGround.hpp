// What ranks tell of a mesh that each of them has a part of.
#pragma once

#include <functional>
#include <vector>

#include "case/Part.hpp"
#include "fields/Ground.hpp"
#include "ranks/Group.hpp"

namespace fields {

/// What rank 0 asks all ranks; see Ground.
struct GroundQuestion {
  enum class Kind { cells, edges, around, cells_at };
  Kind kind = Kind::cells;
  std::vector<cases::Number> numbers = {};  ///< of cells or edges
  std::vector<double> x = {}, y = {};       ///< of points, m

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.kind, self.numbers, self.x, self.y);
  }
};

struct GroundAnswer {
  Surroundings found;                   ///< what is asked for by its numbers
  std::vector<cases::Number> cells_at;  ///< of every point; -1: none

  /// Takes in what another part answers.
  void add(GroundAnswer other);

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.found, self.cells_at);
  }
};

/// What a part knows by its own cells.
GroundAnswer answer_of(const cases::Part& part, const GroundQuestion& question);

/// Rank 0 asks, all ranks answer of their parts, and rank 0 has what they all say. Called by all
/// ranks; the question of rank 0 counts.
GroundAnswer answer_together(ranks::Group& group, const cases::Part& part,
                             GroundQuestion question = {});

/// The ground as rank 0 has it.
class RanksGround final : public Ground {
 public:
  using Ask = std::function<GroundAnswer(GroundQuestion)>;

  /// `ask` lets the ranks answer together.
  RanksGround(const MeshCounts& counts, Ask ask) : counts_(counts), ask_(std::move(ask)) {}

  MeshCounts counts() const override { return counts_; }
  cases::CellGeometry geometry_of(cases::Number cell) const override;
  std::vector<GroundEdge> edges(std::span<const cases::Number> numbers) const override;
  std::vector<cases::Number> cells_at(std::span<const physics::PlanPoint> points) const override;
  Surroundings around(std::span<const cases::Number> cells) const override;

 private:
  MeshCounts counts_;
  Ask ask_;
};

}  // namespace fields
