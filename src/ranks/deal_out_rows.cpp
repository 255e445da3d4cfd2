#include "ranks/deal_out_rows.hpp"

#include <algorithm>
#include <cstdint>
#include <exception>

#include "ranks/in_step.hpp"
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

/// Those of one rank; where the source throws, the rank hears it. Answers what it threw.
std::exception_ptr read_rows(Group& group, int rank, cases::Number rows_of_all,
                             std::size_t bytes_per_row, utils::ByteSource& rows, const Take& take) {
  utils::Bytes piece;
  for (std::size_t left = rows_left_to(rank, group, rows_of_all); left > 0;) {
    const std::size_t count = std::min(left, rows_at_once(bytes_per_row));
    piece.resize(count * bytes_per_row);
    try {
      rows.take(piece.data(), piece.size());
    } catch (...) {
      if (rank > 0) send_count(group, 0, rank);
      return std::current_exception();
    }
    left -= count;
    if (rank == 0) {
      take_piece(piece, count, take);
    } else {
      send_count(group, count, rank);
      group.send(piece, rank);
    }
  }
  return nullptr;
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
  std::exception_ptr lost;
  for (int rank = 0; rank < group.size(); ++rank) {
    if (!lost) {
      lost = read_rows(group, rank, rows_of_all, bytes_per_row, *rows, take);
    } else if (rows_left_to(rank, group, rows_of_all) > 0) {
      send_count(group, 0, rank);
    }
  }
  is_whole = !lost;
  broadcast_plain(group, is_whole);
  if (lost) throw Refusal(lost);
  return is_whole;
}

}  // namespace ranks
