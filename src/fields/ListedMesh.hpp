// The mesh of a run as files of results list it, from whoever has it.
#pragma once

#include <cstddef>
#include <optional>

#include "case/Case.hpp"
#include "case/MeshRows.hpp"
#include "fields/Ground.hpp"

namespace fields {

class ListedMesh {
 public:
  virtual ~ListedMesh() = default;

  virtual MeshCounts counts() const = 0;
  /// Most nodes of a cell.
  virtual std::size_t width() const = 0;
  /// The rows that come next; nothing behind the last ones. Before a flow is made.
  virtual std::optional<cases::MeshRows> next() = 0;
};

/// Of a case that this process has alone: all rows at once.
class WholeListedMesh final : public ListedMesh {
 public:
  /// `origin` was taken from its coordinates, m. The case must outlive it.
  WholeListedMesh(const cases::Case& contents, physics::PlanPoint origin)
      : case_(contents), origin_(origin) {}

  MeshCounts counts() const override { return case_.mesh.counts(); }
  std::size_t width() const override { return cases::most_nodes_of_a_cell(case_.mesh); }
  std::optional<cases::MeshRows> next() override;

 private:
  const cases::Case& case_;
  physics::PlanPoint origin_;
  bool is_listed_ = false;
};

}  // namespace fields
