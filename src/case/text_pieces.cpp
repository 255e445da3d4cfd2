#include "case/text_pieces.hpp"

#include <algorithm>
#include <filesystem>

#include "utils/stop.hpp"

namespace cases {

namespace {

/// Goes from token to token of a piece.
class TokenWalk : public utils::TextScanner {
 public:
  TokenWalk(const std::string& name, const TextPiece& piece)
      : TextScanner(name, piece.begin), end_(piece.end) {}

  /// The next token, which holds until the one after it is asked for; false at the end.
  bool take(std::string_view& token) {
    token = next_token();
    return !token.empty() && position() < end_;
  }

 private:
  std::int64_t end_;
};

/// Passes over the rest of a token that begins before an offset.
class TokenEnd : public utils::TextScanner {
 public:
  TokenEnd(const std::string& name, std::int64_t offset) : TextScanner(name, offset - 1) {
    if (!unread().empty() && !is_space(unread().front())) next_token();
  }
};

void require_pieces(const std::string& name) {
  std::error_code ignored;
  if (!std::filesystem::exists(name, ignored)) return;  // whoever opens it says so
  if (std::filesystem::is_regular_file(name, ignored)) return;
  utils::fatal("Error in file " + name +
               ": ranks read a piece of it each, expected a file that is no pipe.\n");
}

}  // namespace

TextHeader read_header(const std::string& name, std::size_t tokens_per_record) {
  require_pieces(name);
  utils::TextScanner file(name);
  const int count = file.read_count("number of records", tokens_per_record);
  return {count, {file.offset(), file.size()}};
}

TextHeader read_start(const std::string& name) {
  require_pieces(name);
  const utils::TextScanner file(name);
  return {0, {file.offset(), file.size()}};
}

TextPiece piece_between(const std::string& name, const TextPiece& records, std::int64_t begin,
                        std::int64_t end) {
  if (begin > records.begin) begin = TokenEnd(name, begin).offset();
  return {begin, std::max(begin, end)};
}

TextPiece piece_of(const std::string& name, const TextPiece& records, int piece, int pieces) {
  // Quotient and remainder apart: the product of the bytes of a file and of pieces may overflow.
  const std::int64_t bytes = records.end - records.begin;
  const auto cut = [&](int k) {
    return records.begin + bytes / pieces * k + bytes % pieces * k / pieces;
  };
  return piece_between(name, records, cut(piece), cut(piece + 1));
}

PassageTable::PassageTable(const std::string& name, const TextPiece& piece,
                           const RecordShape& shape)
    : shape_(shape) {
  if (shape.kind == RecordShape::Kind::edges) {
    walk_edges(name, piece);
  } else if (shape.kind == RecordShape::Kind::cells) {
    walk_cells(name, piece);
  } else {
    TokenWalk walk(name, piece);
    for (std::string_view token; walk.take(token);) ++tokens_;
  }
}

void PassageTable::walk_edges(const std::string& name, const TextPiece& piece) {
  for (std::size_t s = 0; s < of_edges_.size(); ++s) of_edges_[s].state = static_cast<int>(s);
  TokenWalk walk(name, piece);
  for (std::string_view token; walk.take(token); ++tokens_) {
    const bool is_before_argument = takes_argument(token);
    for (Passage& passage : of_edges_) {
      if (passage.state == 0) ++passage.records;
      passage.state = state_behind_of_edge(passage.state, is_before_argument);
    }
  }
}

void PassageTable::walk_cells(const std::string& name, const TextPiece& piece) {
  TokenWalk walk(name, piece);
  for (std::string_view token; walk.take(token); ++tokens_) {
    nodes_.push_back(static_cast<std::int32_t>(state_behind(shape_, 0, token)));
  }
  for (std::size_t state = 0; state < of_cells_.size(); ++state) {
    of_cells_[state] = from_token(static_cast<std::int64_t>(state));
  }
}

Passage PassageTable::from_token(std::int64_t token) const {
  Passage passage;
  while (token < tokens_) {
    token += std::int64_t{1} + nodes_[static_cast<std::size_t>(token)];
    ++passage.records;
  }
  passage.state = token - tokens_;
  return passage;
}

Passage PassageTable::from(RecordState state) const {
  if (shape_.kind == RecordShape::Kind::edges) return of_edges_[static_cast<std::size_t>(state)];
  if (state >= tokens_) return {state - tokens_, 0};
  if (shape_.kind == RecordShape::Kind::cells) {
    const auto first = static_cast<std::size_t>(state);
    return first < of_cells_.size() ? of_cells_[first] : from_token(state);
  }
  const std::int64_t tokens = tokens_ - state;
  const std::int64_t records = (tokens + shape_.tokens - 1) / shape_.tokens;
  return {records * shape_.tokens - tokens, records};
}

Passage PassageTable::behind(const Passage& before) const {
  Passage passage = from(before.state);
  passage.records += before.records;
  return passage;
}

PieceOfRecords records_in(const TextPiece& piece, const RecordShape& shape, const Passage& before,
                          const Passage& behind, Number total, bool is_last) {
  const auto number = [&](std::int64_t records) {
    return static_cast<Number>(std::min<std::int64_t>(records, total));
  };
  const Number end = is_last ? total : number(behind.records);
  return {piece, shape, before.state, {number(before.records), end, total}};
}

PieceScanner::PieceScanner(const std::string& name, const PieceOfRecords& piece)
    : TextScanner(name, piece.piece.begin) {
  for (RecordState state = piece.state; state > 0;) {
    const std::string_view token = next_token();
    if (token.empty()) return;
    state = state_behind(piece.shape, state, token);
  }
}

}  // namespace cases
