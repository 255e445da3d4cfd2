#include "fields/OwnRows.hpp"

#include <cstddef>
#include <span>
#include <string_view>

namespace fields {

namespace {

class TextSink final : public utils::ByteSink {
 public:
  explicit TextSink(utils::TextBuffer& text) : text_(text) {}
  void put(const void* from, std::size_t count) override {
    text_ << std::string_view(static_cast<const char*>(from), count);
  }

 private:
  utils::TextBuffer& text_;
};

}  // namespace

void OwnTableRows::gather(const RowsRequest& request, FlowOfRank& part) {
  request_ = request;
  part.read_rows(request.fields, values_);
}

template <class Add>
void OwnTableRows::for_each_row(const Add& add) const {
  const std::size_t rows = centres_.size() / 3;
  const double* const x = centres_.data();
  std::vector<double> row(request_.fields.size());
  for (std::size_t i = 0; i < rows; ++i) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      row[column] = values_[column * rows + i];
    }
    add(x[i], x[rows + i], x[2 * rows + i], row);
  }
}

void OwnTableRows::add_to(utils::CellTable& to) const {
  for_each_row(
      [&](double x, double y, double z, std::span<const double> row) { to.add_row(x, y, z, row); });
}

void OwnTableRows::make_text(utils::TextBuffer& text) const {
  for_each_row([&](double x, double y, double z, std::span<const double> row) {
    utils::put_row(text, request_.bed, x, y, z, row);
  });
}

void OwnValueRows::gather(const ValuesRequest& request, FlowOfRank& part) {
  fields_ = request.fields;
  for (const Field field : fields_) part.read_rows({field}, columns_[field]);
}

void OwnValueRows::make_text(utils::TextBuffer& text) const {
  std::vector<const double*> columns;
  for (const Field field : fields_) columns.push_back(columns_[field].data());
  columns.push_back(bed_.data());
  TextSink sink(text);
  put_rows(columns, bed_.size(), sink);
}

void OwnSavedRows::gather(const SavedRequest& request, FlowOfRank& part) {
  part.save_rows(request, flow_, values_);
}

void OwnSavedRows::put_to(utils::ByteSink& sink) const {
  const std::size_t rows = flow_.columns.empty() ? 0 : values_.size() / flow_.columns.size();
  std::vector<const double*> columns;
  for (std::size_t k = 0; k < flow_.columns.size(); ++k)
    columns.push_back(values_.data() + k * rows);
  put_rows(columns, rows, sink);
}

void OwnSavedRows::make_text(utils::TextBuffer& text) const {
  TextSink sink(text);
  put_to(sink);
}

}  // namespace fields
