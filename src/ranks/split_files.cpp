#include "ranks/split_files.hpp"

#include <functional>
#include <optional>

#include "ranks/FirstRefusal.hpp"
#include "ranks/values.hpp"

namespace ranks {

namespace {

/// What `read` gives on rank 0, on all ranks.
cases::TextHeader header_by(Group& group, const std::function<cases::TextHeader()>& read) {
  cases::TextHeader header{};
  do_together(group, [&] {
    if (group.rank() == 0) header = read();
  });
  broadcast_plain(group, header);
  return header;
}

/// Goes from rank to rank, each of which knows what its piece makes of what comes in.
cases::PieceOfRecords share(Group& group, const std::string& name, const cases::RecordShape& shape,
                            const cases::TextPiece& all, cases::Number total) {
  cases::TextPiece piece{};
  std::optional<cases::PassageTable> table;
  do_together(group, [&] {
    piece = cases::piece_of(name, all, group.rank(), group.size());
    table.emplace(name, piece, shape);
  });
  const bool is_last = group.rank() + 1 == group.size();
  cases::Passage before;
  if (group.rank() > 0) {
    group.receive(std::as_writable_bytes(std::span(&before, 1)), group.rank() - 1);
  }
  const cases::Passage behind = table->behind(before);
  if (!is_last) group.send(std::as_bytes(std::span(&behind, 1)), group.rank() + 1);
  return cases::records_in(piece, shape, before, behind, total, is_last);
}

}  // namespace

cases::PieceOfRecords share_counted_file(Group& group, const std::string& name,
                                         const cases::RecordShape& shape,
                                         std::size_t tokens_per_record) {
  const cases::TextHeader header =
      header_by(group, [&] { return cases::read_header(name, tokens_per_record); });
  return share(group, name, shape, header.records, header.count);
}

cases::PieceOfRecords share_file(Group& group, const std::string& name,
                                 const cases::RecordShape& shape, cases::Number total) {
  const cases::TextHeader header = header_by(group, [&] { return cases::read_start(name); });
  return share(group, name, shape, header.records, total);
}

}  // namespace ranks
