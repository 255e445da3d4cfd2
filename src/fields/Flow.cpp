#include "fields/Flow.hpp"

#include <utility>
#include <vector>

#include "fields/PartLooks.hpp"

namespace fields {

namespace {

using cases::at;

/// All rows of a flow that this process computes alone.
class WholeRows final : public Rows {
 public:
  WholeRows(const Flow& flow, const cases::Mesh& mesh, RowsRequest request)
      : flow_(flow), mesh_(mesh), request_(std::move(request)) {}

  void gather() override {
    const std::size_t n_cells = at(mesh_.n_cells());
    values_.resize(request_.fields.size() * n_cells);
    for (std::size_t k = 0; k < request_.fields.size(); ++k) {
      flow_.read(request_.fields[k], {values_.data() + k * n_cells, n_cells});
    }
  }

  void add_own_to(utils::CellTable& table) const override {
    const std::size_t n_cells = at(mesh_.n_cells());
    std::vector<double> row(request_.fields.size());
    for (cases::Number cell = 0; cell < mesh_.n_cells(); ++cell) {
      for (std::size_t k = 0; k < row.size(); ++k) row[k] = values_[k * n_cells + at(cell)];
      const physics::SpacePoint center = mesh_.center_of(cell);
      table.add_row(center.x, center.y, center.z, row);
    }
  }

 private:
  const Flow& flow_;
  const cases::Mesh& mesh_;
  RowsRequest request_;
  std::vector<double> values_;  ///< of the first field, of the second, ...
};

}  // namespace

std::unique_ptr<Rows> Flow::rows(const cases::Mesh& mesh, const RowsRequest& request) const {
  return std::make_unique<WholeRows>(*this, mesh, request);
}

std::unique_ptr<Ground> Flow::ground(const cases::Case& contents) const {
  return std::make_unique<WholeGround>(contents);
}

std::unique_ptr<Looks> Flow::looks(const cases::Case& contents) const {
  return std::make_unique<WholeLooks>(*this, contents);
}

}  // namespace fields
