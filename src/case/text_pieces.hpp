// A text file in pieces that are read side by side, each by a reader that sees nothing of the
// others. Records may begin and end anywhere in a line.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "case/Records.hpp"
#include "case/record_shapes.hpp"
#include "utils/TextScanner.hpp"

namespace cases {

/// Bytes of a file. The tokens that begin among them belong to it.
struct TextPiece {
  std::int64_t begin, end;
};

/// What stands at the start of a file, and where the rest of it lies.
struct TextHeader {
  int count;  ///< of the records that follow; 0 where a file does not say
  TextPiece records;
};

/// Ends the run as whole reading does at the start of a file of records of at least so many tokens,
/// which begins with their number; and where the file is a pipe, which has no pieces.
TextHeader read_header(const std::string& name, std::size_t tokens_per_record);
/// The same of a file that does not begin with their number.
TextHeader read_start(const std::string& name);

/// The bytes of a file cut at a number of places, ascending.
TextPiece piece_between(const std::string& name, const TextPiece& records, std::int64_t begin,
                        std::int64_t end);
/// One of a number of pieces of nearly one length.
TextPiece piece_of(const std::string& name, const TextPiece& records, int piece, int pieces);

/// What pieces of a file up to one of them hold.
struct Passage {
  RecordState state = 0;     ///< behind their last token
  std::int64_t records = 0;  ///< that begin there
};

/// Finds what a piece holds before it is known where in a record it begins: for all possible
/// answers at once. Keeps 4 bytes per token of a file of cells, next to nothing of others.
class PassageTable {
 public:
  PassageTable(const std::string& name, const TextPiece& piece, const RecordShape& shape);

  /// With this piece, of what those before it hold.
  Passage behind(const Passage& before) const;

 private:
  static constexpr std::size_t states_of_edges = 6;

  void walk_edges(const std::string& name, const TextPiece& piece);
  void walk_cells(const std::string& name, const TextPiece& piece);
  Passage from(RecordState state) const;
  /// From a token of a file of cells on, as if a record began with it.
  Passage from_token(std::int64_t token) const;

  RecordShape shape_;
  std::int64_t tokens_ = 0;
  std::array<Passage, states_of_edges> of_edges_{};
  std::vector<std::int32_t> nodes_;  ///< of the cell that a token of a file of cells would begin
  /// From the first tokens on, as ranks wait for each other's answers: few cells have more nodes.
  std::array<Passage, 8> of_cells_{};
};

/// What a reader takes of a file: the records that begin in its piece.
struct PieceOfRecords {
  TextPiece piece;
  RecordShape shape;
  RecordState state;  ///< at the start of the piece
  Records records;
};

/// `total` is how many records the file is to have: what follows them is not read. The last reader
/// takes all that are left, to find the file too short.
PieceOfRecords records_in(const TextPiece& piece, const RecordShape& shape, const Passage& before,
                          const Passage& behind, Number total, bool is_last);

/// Gives the values of these records.
class PieceScanner : public utils::TextScanner {
 public:
  PieceScanner(const std::string& name, const PieceOfRecords& piece);
};

}  // namespace cases
