// The rows of a result that one of several ranks has, in memory.
#pragma once

#include <vector>

#include "fields/FlowOfRank.hpp"
#include "fields/Rows.hpp"
#include "utils/TextBuffer.hpp"

namespace fields {

class OwnRows {
 public:
  virtual ~OwnRows() = default;
  /// Makes text, or bytes, of all of them.
  virtual void make_text(utils::TextBuffer& text) const = 0;
};

/// Of a table.
class OwnTableRows final : public OwnRows {
 public:
  /// `centres`: x of all rows, then y, then z, m; they must outlive it.
  explicit OwnTableRows(const std::vector<double>& centres) : centres_(centres) {}

  void gather(const RowsRequest& request, FlowOfRank& part);
  void add_to(utils::CellTable& to) const;
  void make_text(utils::TextBuffer& text) const override;

 private:
  /// Calls add(x, y, z, values) for all rows.
  template <class Add>
  void for_each_row(const Add& add) const;

  const std::vector<double>& centres_;
  RowsRequest request_;
  std::vector<double> values_;  ///< column by column
};

/// Of values of fields, and of the bed.
class OwnValueRows final : public OwnRows {
 public:
  /// `bed`: of all rows at the start, m; it must outlive it.
  explicit OwnValueRows(const std::vector<double>& bed) : bed_(bed) {}

  void gather(const ValuesRequest& request, FlowOfRank& part);
  const Columns& columns() const { return columns_; }
  const std::vector<double>& bed() const { return bed_; }
  void make_text(utils::TextBuffer& text) const override;

 private:
  const std::vector<double>& bed_;
  std::vector<Field> fields_;
  Columns columns_;
};

/// Of what is kept of a flow.
class OwnSavedRows final : public OwnRows {
 public:
  void gather(const SavedRequest& request, FlowOfRank& part);
  /// What there is besides rows.
  const SavedFlow& flow() const { return flow_; }
  void put_to(utils::ByteSink& sink) const;
  void make_text(utils::TextBuffer& text) const override;

 private:
  SavedFlow flow_;
  std::vector<double> values_;  ///< column by column
};

}  // namespace fields
