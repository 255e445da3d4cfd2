#include "ranks/deal_out_rows.hpp"

#include <algorithm>
#include <cstdint>

#include "ranks/values.hpp"

namespace ranks {

namespace {

using Take = std::function<void(utils::ByteSource&, std::size_t)>;

std::size_t rows_at_once(std::size_t bytes_per_row) {
  constexpr std::size_t largest_piece = 4 << 20;  // bytes
  return std::max<std::size_t>(1, largest_piece / std::max<std::size_t>(1, bytes_per_row));
}

std::size_t rows_left_to(int rank, const Group& group, cases::Number rows_of_all) {
  return static_cast<std::size_t>(rows_of(rank, group.size(), rows_of_all).count);
}

void take_piece(const utils::Bytes& piece, std::size_t count, const Take& take) {
  utils::MemorySource source(piece);
  take(source, count);
}

/// None: no more come.
void send_count(Group& group, std::uint64_t count, int to) {
  group.send(std::as_bytes(std::span(&count, 1)), to);
}

std::uint64_t receive_count(Group& group) {
  std::uint64_t count = 0;
  group.receive(std::as_writable_bytes(std::span(&count, 1)), 0);
  return count;
}

/// Those of this rank; ends where no more come.
void receive_rows(Group& group, cases::Number rows_of_all, std::size_t bytes_per_row,
                  const Take& take) {
  utils::Bytes piece;
  for (std::size_t left = rows_left_to(group.rank(), group, rows_of_all); left > 0;) {
    const std::uint64_t count = receive_count(group);
    if (count == 0) return;
    piece.resize(count * bytes_per_row);
    group.receive(piece, 0);
    take_piece(piece, count, take);
    left -= count;
  }
}

/// Those of one rank.
void read_rows(Group& group, int rank, cases::Number rows_of_all, std::size_t bytes_per_row,
               utils::ByteSource& rows, const Take& take) {
  utils::Bytes piece;
  for (std::size_t left = rows_left_to(rank, group, rows_of_all); left > 0;) {
    const std::size_t count = std::min(left, rows_at_once(bytes_per_row));
    piece.resize(count * bytes_per_row);
    rows.take(piece.data(), piece.size());
    left -= count;
    if (rank == 0) {
      take_piece(piece, count, take);
    } else {
      send_count(group, count, rank);
      group.send(piece, rank);
    }
  }
}

}  // namespace

bool deal_out_rows(Group& group, cases::Number rows_of_all, std::size_t bytes_per_row,
                   utils::ByteSource* rows, const Take& take) {
  bool is_whole = true;
  if (group.rank() > 0) {
    receive_rows(group, rows_of_all, bytes_per_row, take);
    broadcast_plain(group, is_whole);
    return is_whole;
  }
  int rank = 0;
  try {
    for (; rank < group.size(); ++rank) {
      read_rows(group, rank, rows_of_all, bytes_per_row, *rows, take);
    }
  } catch (...) {
    for (int other = std::max(rank, 1); other < group.size(); ++other) send_count(group, 0, other);
    is_whole = false;
    broadcast_plain(group, is_whole);
    throw;
  }
  broadcast_plain(group, is_whole);
  return is_whole;
}

}  // namespace ranks
