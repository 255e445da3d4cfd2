// What a rank keeps of its part of a flow, and its way to the ranks of the rows and back.
#include <algorithm>

#include "case/initial_state.hpp"
#include "fields/FlowOfRank.hpp"
#include "ranks/deal_out_rows.hpp"

namespace fields {

using cases::at;

void FlowOfRank::beds_of_rows(std::vector<double>& values) {
  std::vector<double> own;
  for (cases::Number k = 0; k < own_part().count(); ++k) {
    own.push_back(cases::bed_level_of(part_.contents, own_part().in_case(k)));
  }
  values.resize(row_plan().rows());
  row_plan().send(own, values, group_);
}

SavedCells FlowOfRank::saved_cells(const SavedRequest& request) {
  SavedCells own;
  engine_->save(own.state);
  if (request.has_notes) engine_->save_notes(own.notes);
  if (request.has_looks) own.infiltrated = looks().infiltrated();
  return own;
}

void FlowOfRank::save_rows(const SavedRequest& request, SavedFlow& saved,
                           std::vector<double>& values) {
  const SavedCells own = saved_cells(request);
  saved.describe(own, at(row_plan().rows_of_all()));
  const std::size_t rows = row_plan().rows();
  values.resize(saved.columns.size() * rows);
  std::size_t next = 0;
  for_each_saved_column(own, [&](const std::vector<double>& column) {
    if (column.empty()) return;
    row_plan().send(column, std::span(values).subspan(next, rows), group_);
    next += rows;
  });
}

void FlowOfRank::load_rows(const LoadRequest& request, utils::ByteSource* rows) {
  SavedCells of_rows, own;
  const auto columns = columns_in_rows(request.saved, request.parts, of_rows);
  const auto own_columns = columns_in_rows(request.saved, request.parts, own);
  for (std::vector<double>* const column : columns) {
    if (column != nullptr) column->resize(row_plan().rows());
  }
  std::size_t first = 0;
  const auto take = [&](utils::ByteSource& from, std::size_t count) {
    std::vector<double*> next;
    for (std::vector<double>* const column : columns) {
      next.push_back(column != nullptr ? column->data() + first : nullptr);
    }
    take_rows(next, count, from);
    first += count;
  };
  const cases::Number rows_of_all = row_plan().rows_of_all();
  if (!ranks::deal_out_rows(group_, rows_of_all, request.saved.bytes_per_row(), rows, take)) return;
  for (std::size_t k = 0; k < columns.size(); ++k) {
    if (columns[k] == nullptr) continue;
    own_columns[k]->resize(at(own_part().count()));
    row_plan().send_back(*columns[k], *own_columns[k], group_);
  }
  take_the_rest(request.saved, own);
  load_cells(request, own);
}

void FlowOfRank::load_cells(const LoadRequest& request, const SavedCells& own) {
  for (const SavedPart part : request.parts) {
    switch (part) {
      case SavedPart::state:
        engine_->set_state(own.state);
        break;
      case SavedPart::notes:
        engine_->load_notes(own.notes);
        break;
      case SavedPart::infiltrated:
        looks().set_infiltrated(own.infiltrated);
        break;
    }
  }
}

}  // namespace fields
