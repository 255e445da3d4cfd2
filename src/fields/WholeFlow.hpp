// A flow that this process computes alone, so that all of its states are here.
#pragma once

#include <memory>
#include <span>

#include "fields/Flow.hpp"

namespace fields {

class WholeFlow : public Flow {
 public:
  using Flow::read;

  std::unique_ptr<Ground> ground(const cases::Case& contents) const override;
  std::unique_ptr<Looks> looks(const cases::Case& contents) const override;
  std::unique_ptr<Rows> rows(const cases::Mesh& mesh, const RowsRequest& request) const override;
  std::unique_ptr<ValueRows> value_rows(const cases::Case& contents) const override;
  std::unique_ptr<SavedRows> saved_rows() const override;
  void load(const SavedFlow& saved, utils::ByteSource& rows) override;
  void load_books(const SavedFlow& saved, bool has_notes, Looks& looks,
                  utils::ByteSource& rows) override;

  /// The present values of a field, of all cells in their order.
  virtual void read(Field field, std::span<double> values) const = 0;
  virtual UnseenDepth unseen_depth(cases::Number cell) const = 0;
  /// By its number in the boundaries of the mesh.
  virtual BoundaryInflow boundary_inflow(int boundary) const = 0;

  /// Between steps: the present state, on every path the same, in place of what `state` holds,
  /// whose memory is taken again.
  virtual void save(engine::State& state) const = 0;
  /// Puts the state of the same case in force, see engine::fits().
  virtual void load(const engine::State& state) = 0;
  /// The same for the notes, of steps that are watched.
  virtual void save_notes(engine::SavedNotes& notes) const = 0;
  virtual void load_notes(const engine::SavedNotes& notes) = 0;
};

}  // namespace fields
