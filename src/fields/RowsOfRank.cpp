#include "fields/RowsOfRank.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace fields {

namespace {

/// What comes before a piece of text.
struct PieceHeader {
  bool is_there = false, is_last = false;
  std::uint64_t size = 0;
};

}  // namespace

template <class Add>
void RowsOfRank::Table::for_each_row(const Add& add) const {
  const std::size_t rows = centres_->size() / 3;
  const double* const x = centres_->data();
  std::vector<double> row(request_.fields.size());
  for (std::size_t i = 0; i < rows; ++i) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      row[column] = values_[column * rows + i];
    }
    add(x[i], x[rows + i], x[2 * rows + i], row);
  }
}

void RowsOfRank::Table::add_to(utils::CellTable& to) const {
  for_each_row(
      [&](double x, double y, double z, std::span<const double> row) { to.add_row(x, y, z, row); });
}

bool RowsOfRank::Table::make_text() {
  for_each_row([&](double x, double y, double z, std::span<const double> row) {
    utils::put_row(text_, request_.bed, x, y, z, row);
  });
  return true;
}

RowsOfRank::RowsOfRank(ranks::Group& group) : group_(group) {}

RowsOfRank::~RowsOfRank() = default;

const RowsOfRank::Table& RowsOfRank::gather(int number, const RowsRequest& request,
                                            FlowOfRank& part) {
  if (centres_.empty()) part.centres_of_rows(centres_);
  std::unique_ptr<Table>& kept = tables_[number];
  if (!kept) kept = std::make_unique<Table>();
  Table& table = *kept;
  table.request_ = request;
  table.centres_ = &centres_;
  table.passed_ = 0;
  part.read_rows(request.fields, table.values_);
  if (group_.rank() > 0) table.formatter_.hand_over([&table] { return table.make_text(); });
  return table;
}

std::optional<RowText> RowsOfRank::pass(int number, int from, std::size_t largest) {
  PieceHeader header;
  const auto header_bytes = std::as_writable_bytes(std::span(&header, 1));
  if (group_.rank() == 0) {
    group_.receive(header_bytes, from);
    if (!header.is_there) return {};
    RowText piece = {std::string(header.size, ' '), header.is_last};
    group_.receive(std::as_writable_bytes(std::span(piece.text)), from);
    return piece;
  }
  if (group_.rank() != from) return {};
  Table& table = *tables_.at(number);
  if (table.formatter_.is_busy()) {
    group_.send(header_bytes, 0);
    return {};
  }
  const std::string_view left = table.text_.text().substr(table.passed_);
  const std::string_view piece = left.substr(0, largest);
  header = {true, piece.size() == left.size(), piece.size()};
  group_.send(header_bytes, 0);
  group_.send(std::as_bytes(std::span(piece)), 0);
  table.passed_ += piece.size();
  if (header.is_last) table.text_ = {};
  return {};
}

}  // namespace fields
