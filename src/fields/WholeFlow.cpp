#include "fields/WholeFlow.hpp"

#include <utility>
#include <vector>

#include "case/initial_state.hpp"
#include "fields/PartLooks.hpp"

namespace fields {

namespace {

using cases::at;

/// All rows of a flow that this process computes alone.
class WholeRows final : public Rows {
 public:
  WholeRows(const WholeFlow& flow, const cases::Mesh& mesh, RowsRequest request)
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
  const WholeFlow& flow_;
  const cases::Mesh& mesh_;
  RowsRequest request_;
  std::vector<double> values_;  ///< of the first field, of the second, ...
};

/// All values of a flow that this process computes alone.
class WholeValueRows final : public ValueRows {
 public:
  WholeValueRows(const WholeFlow& flow, const cases::Case& contents) : flow_(flow) {
    bed_.reserve(at(contents.mesh.n_cells()));
    for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
      bed_.push_back(cases::bed_level_of(contents, cell));
    }
  }

  void gather(const std::vector<Field>& fields) override {
    for (const Field field : fields) {
      columns_[field].resize(bed_.size());
      flow_.read(field, columns_[field]);
    }
  }
  const Columns& columns() const override { return columns_; }
  const std::vector<double>& bed() const override { return bed_; }

 private:
  const WholeFlow& flow_;
  Columns columns_;
  std::vector<double> bed_;
};

/// What is kept of a flow that this process computes alone.
class WholeSavedRows final : public SavedRows {
 public:
  explicit WholeSavedRows(const WholeFlow& flow) : whole_(flow) {}

  void gather(const Books& books) override {
    whole_.save(cells_.state);
    if (books.has_notes) {
      whole_.save_notes(cells_.notes);
    } else {
      cells_.notes = {};
    }
    cells_.infiltrated.clear();
    if (books.looks != nullptr)
      cells_.infiltrated = dynamic_cast<const WholeLooks&>(*books.looks).infiltrated();
    flow_.describe(cells_, cells_.state.h.size());
  }
  void put_own_to(utils::ByteSink& sink) const override {
    std::vector<const double*> columns;
    for_each_saved_column(cells_, [&](const std::vector<double>& column) {
      if (!column.empty()) columns.push_back(column.data());
    });
    put_rows(columns, flow_.cells, sink);
  }

 private:
  const WholeFlow& whole_;
  SavedCells cells_;
};

/// The parts of all cells that were asked for.
SavedCells taken_from(const SavedFlow& saved, const std::vector<SavedPart>& parts,
                      utils::ByteSource& rows) {
  SavedCells cells;
  std::vector<double*> columns;
  for (std::vector<double>* const column : columns_in_rows(saved, parts, cells)) {
    if (column != nullptr) column->resize(saved.cells);
    columns.push_back(column != nullptr ? column->data() : nullptr);
  }
  take_rows(columns, saved.cells, rows);
  take_the_rest(saved, cells);
  return cells;
}

}  // namespace

std::unique_ptr<ValueRows> WholeFlow::value_rows(const cases::Case& contents) const {
  return std::make_unique<WholeValueRows>(*this, contents);
}

std::unique_ptr<SavedRows> WholeFlow::saved_rows() const {
  return std::make_unique<WholeSavedRows>(*this);
}

void WholeFlow::load(const SavedFlow& saved, utils::ByteSource& rows) {
  load(taken_from(saved, {SavedPart::state}, rows).state);
}

void WholeFlow::load_books(const SavedFlow& saved, bool has_notes, Looks& looks,
                           utils::ByteSource& rows) {
  const SavedCells books = taken_from(saved, {SavedPart::notes, SavedPart::infiltrated}, rows);
  if (has_notes) load_notes(books.notes);
  dynamic_cast<WholeLooks&>(looks).set_infiltrated(books.infiltrated);
}

std::unique_ptr<Rows> WholeFlow::rows(const cases::Mesh& mesh, const RowsRequest& request) const {
  return std::make_unique<WholeRows>(*this, mesh, request);
}

std::unique_ptr<Ground> WholeFlow::ground(const cases::Case& contents) const {
  return std::make_unique<WholeGround>(contents);
}

std::unique_ptr<Looks> WholeFlow::looks(const cases::Case& contents) const {
  return std::make_unique<WholeLooks>(*this, contents);
}

}  // namespace fields
