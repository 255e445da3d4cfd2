#include "checkpoint/CheckpointKeeper.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "checkpoint/checkpoint_pair.hpp"
#include "utils/stop.hpp"

namespace checkpoint {

namespace {

using Piece = utils::WriterThread::Piece;

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
  throw std::runtime_error("Error. The checkpoint " + name + " cannot be kept: " + why + ".");
}

}  // namespace

CheckpointKeeper::CheckpointKeeper(const Request& request) : request_(request) {
  const std::filesystem::path folder = std::filesystem::path(request.name).parent_path();
  std::error_code ignored;
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    refuse(request.name, "its folder does not exist");
  }
  const std::array<FoundFile, 2> files = find_files(request.name);
  for (std::size_t k = 0; k < files.size(); ++k) {
    const Look& look = files[k].look;
    if (files[k].is_there && look.is_foreign) refuse(files[k].name, look.trouble);
    if (!look.trouble.empty() || look.number < last_number_) continue;
    last_number_ = look.number;
    target_ = 1 - k;
  }
  next_ = Clock::now() + interval();
}

CheckpointKeeper::Clock::duration CheckpointKeeper::interval() const {
  constexpr double longest = 1e9;  // which the clock can still add, s
  return std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(std::min(request_.interval, longest)));
}

bool CheckpointKeeper::is_due() {
  if (request_.is_wished && request_.is_wished()) is_wished_ = true;
  return (is_wished_ || Clock::now() >= next_) && !writer_.is_busy();
}

Checkpoint& CheckpointKeeper::contents() {
  writer_.wait();
  return contents_;
}

void CheckpointKeeper::write(fields::SavedRows& rows, std::function<bool()> results_are_written) {
  is_wished_ = false;
  next_ = Clock::now() + interval();
  writer_.hand_over_pieces(pieces(rows, std::move(results_are_written)));
}

utils::WriterThread::Pieces CheckpointKeeper::pieces(fields::SavedRows& rows,
                                                     std::function<bool()> results_are_written) {
  // A run does not end for a checkpoint: no piece fails. Behind one that could not be put there is
  // no file any more.
  const auto piece = [this, results_are_written](auto&& put, bool is_last) {
    auto work = [this, results_are_written, put = std::move(put), is_last] {
      try {
        put();
        if (is_last && file_) finish_file(results_are_written);
      } catch (const std::exception& error) {
        give_up(error.what());
      }
      return true;
    };
    return Piece{std::move(work), is_last};
  };
  return [this, &rows, piece, is_first = true]() mutable -> std::optional<Piece> {
    if (std::exchange(is_first, false)) {
      return piece([this, &rows] { begin_file(rows); }, !rows.has_others());
    }
    try {
      std::optional<fields::RowText> next = rows.next();
      if (!next) return {};
      const bool is_last = next->is_last;
      return piece(
          [this, bytes = std::move(next->text)] {
            if (file_) file_->put(bytes.data(), bytes.size());
          },
          is_last);
    } catch (const std::exception& error) {
      return Piece{[this, trouble = std::string(error.what())] {
                     if (file_) give_up(trouble);
                     return true;
                   },
                   true};
    }
  };
}

void CheckpointKeeper::begin_file(const fields::SavedRows& rows) {
  file_.emplace(files_of(request_.name)[target_], last_number_ + 1, contents_);
  rows.put_own_to(*file_);
}

void CheckpointKeeper::finish_file(const std::function<bool()>& results_are_written) {
  const std::string trouble = file_->finish(results_are_written);
  file_.reset();
  if (!trouble.empty()) return tell_trouble(trouble);
  ++last_number_;
  target_ = 1 - target_;
}

void CheckpointKeeper::give_up(const std::string& trouble) {
  file_.reset();
  tell_trouble(trouble);
}

void CheckpointKeeper::tell_trouble(const std::string& trouble) const {
  utils::warn("the checkpoint " + files_of(request_.name)[target_] +
              " couldn't be written: " + trouble + "; the one before it stays.");
}

}  // namespace checkpoint
