#include "output/GatheredFields.hpp"

#include <chrono>
#include <thread>
#include <utility>

using Piece = utils::WriterThread::Piece;

GatheredFields::GatheredFields(const cases::Mesh& mesh, fields::RowsRequest request)
    : mesh_(mesh), request_(std::move(request)) {}

void GatheredFields::gather(const fields::Flow& flow) {
  if (flow_ != &flow) rows_ = flow.rows(mesh_, request_);
  flow_ = &flow;
  rows_->gather();
}

utils::WriterThread::Pieces GatheredFields::pieces(const std::string& name,
                                                   const std::string& header) {
  return [this, name, header, is_first = true]() mutable -> std::optional<Piece> {
    if (!std::exchange(is_first, false)) return next_piece();
    const bool is_all = !rows_->has_others();
    auto write = [this, name, header, is_all] {
      table_.emplace(name, header, request_.bed);
      rows_->add_own_to(*table_);
      return !is_all || table_->commit();
    };
    return Piece{std::move(write), is_all};
  };
}

std::optional<Piece> GatheredFields::next_piece() {
  std::optional<fields::RowText> rows = rows_->next();
  if (!rows) return {};
  const bool is_last = rows->is_last;
  auto write = [this, text = std::move(rows->text), is_last] {
    table_->add_rows(text);
    return !is_last || table_->commit();
  };
  return Piece{std::move(write), is_last};
}

bool GatheredFields::write(const std::string& name, const std::string& header) {
  const utils::WriterThread::Pieces next = pieces(name, header);
  while (true) {
    const std::optional<Piece> piece = next();
    if (!piece) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      continue;
    }
    const bool is_good = piece->work();
    if (piece->is_last) return is_good;
  }
}

void GatheredFields::hand_over(utils::WriterThread& writer, const std::string& name,
                               const std::string& header) {
  writer.hand_over_pieces(pieces(name, header));
}
