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
    if (!std::exchange(is_first, false)) return next_piece(header);
    const bool is_all = !rows_->has_others();
    auto write = [this, name, header, is_all] {
      table_.emplace(name, header, request_.bed);
      if (rows_->have_writers()) shared_ = table_->share();
      if (shared_) return true;
      rows_->add_own_to(*table_);
      return !is_all || table_->commit();
    };
    return Piece{std::move(write), is_all};
  };
}

std::optional<Piece> GatheredFields::next_piece(const std::string& header) {
  if (shared_) return next_shared_piece(header);
  std::optional<fields::RowText> rows = rows_->next();
  if (!rows) return {};
  const bool is_last = rows->is_last;
  auto write = [this, text = std::move(rows->text), is_last] {
    table_->add_rows(text);
    return !is_last || table_->commit();
  };
  return Piece{std::move(write), is_last};
}

std::optional<Piece> GatheredFields::next_shared_piece(const std::string& header) {
  const fields::SharedFile file = rows_->write_shared(*shared_, header);
  switch (file.state) {
    case fields::SharedFile::State::waits:
      return {};
    case fields::SharedFile::State::grows: {
      auto wait = [this] {
        rows_->wait_for_own();
        return true;
      };
      return Piece{std::move(wait), false};
    }
    case fields::SharedFile::State::is_refused: {
      shared_.reset();
      auto write = [this] {
        table_->unshare();
        rows_->add_own_to(*table_);
        return true;
      };
      return Piece{std::move(write), false};
    }
    case fields::SharedFile::State::is_over:
      break;
  }
  shared_.reset();
  auto commit = [this, file] { return table_->commit_shared(file.bytes, file.error); };
  return Piece{std::move(commit), true};
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
