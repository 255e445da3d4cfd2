// A rank reads its piece of a file.
#pragma once

#include <string>

#include "case/text_pieces.hpp"
#include "ranks/FirstRefusal.hpp"

namespace ranks {

/// Calls read(file) for the records of a piece, and keeps what it refuses.
template <class Read>
void read_piece(const std::string& name, const cases::PieceOfRecords& piece, FirstRefusal& refusal,
                const Read& read) {
  if (piece.records.size() == 0) return;
  cases::Number record = piece.records.first;
  const auto read_noting_record = [&] {
    cases::PieceScanner file(name, piece);
    try {
      read(file);
    } catch (...) {
      record = file.record();
      throw;
    }
  };
  refusal.keep(read_noting_record, [&] { return record; });
}

/// Keeps that a record of a piece does not do, which was seen behind its reading: with the place
/// that its reader would give. read(file, records) reads these records anew, to find it.
template <class Read>
void refuse_record(const std::string& name, const cases::PieceOfRecords& piece,
                   cases::Number record, const std::string& why, FirstRefusal& refusal,
                   const Read& read) {
  const auto read_again = [&] {
    cases::PieceScanner file(name, piece);
    read(file, cases::Records{piece.records.first, record + 1, piece.records.total});
    file.refuse_record(why);
  };
  refusal.keep(read_again, [&] { return record; });
}

}  // namespace ranks
