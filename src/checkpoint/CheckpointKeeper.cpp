#include "checkpoint/CheckpointKeeper.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "checkpoint/checkpoint_pair.hpp"
#include "utils/stop.hpp"

namespace checkpoint {

namespace {

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

void CheckpointKeeper::write(std::function<bool()> results_are_written) {
  is_wished_ = false;
  next_ = Clock::now() + interval();
  writer_.hand_over([this, results_are_written = std::move(results_are_written)] {
    write_file(results_are_written);
    return true;  // a run does not end for a checkpoint
  });
}

void CheckpointKeeper::write_file(const std::function<bool()>& results_are_written) {
  const std::string name = files_of(request_.name)[target_];
  const std::string trouble =
      checkpoint::write_file(name, last_number_ + 1, contents_, results_are_written);
  if (!trouble.empty()) {
    utils::warn("the checkpoint " + name + " couldn't be written: " + trouble +
                "; the one before it stays.");
    return;
  }
  ++last_number_;
  target_ = 1 - target_;
}

}  // namespace checkpoint
