#include "fields/SharedText.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "ranks/values.hpp"

namespace fields {

SharedText::SharedText(ranks::Group& group, const Writers& writers, utils::TextBuffer& own,
                       utils::WriterThread& thread)
    : group_(group), writers_(writers), own_(own), thread_(thread) {}

SharedFile SharedText::go_on(const utils::SharedPart* part) {
  const std::vector<RankState> states = ranks::gather_all_plain(group_, own_state());
  const auto is_busy = [](const RankState& state) { return state.is_busy; };
  if (std::any_of(states.begin(), states.end(), is_busy)) {
    return {thread_.is_busy() ? SharedFile::State::grows : SharedFile::State::waits};
  }
  const auto failed = std::find_if(states.begin(), states.end(),
                                   [](const RankState& state) { return state.error != 0; });
  if (failed != states.end()) {
    using State = SharedFile::State;
    const State state = stage_ == Stage::opening ? State::is_refused : State::is_over;
    return end(state, static_cast<int>(failed - states.begin()), failed->error);
  }
  if (stage_ == Stage::making_text) return open(part, states);
  stage_ = Stage::writing;
  return round_ < blocks_->rounds() ? pass_blocks() : end(SharedFile::State::is_over, 0, 0);
}

SharedText::RankState SharedText::own_state() const {
  if (thread_.is_busy()) return {};
  const int error = thread_.has_failed() ? ENOMEM : error_;  // nothing else is thrown there
  return {false, error, own_.text().size()};
}

SharedFile SharedText::open(const utils::SharedPart* part, const std::vector<RankState>& states) {
  utils::SharedPart told;
  if (part != nullptr) {
    told = *part;
    ranks::broadcast_out(group_, told);
  } else {
    ranks::broadcast_in(group_, told);
  }
  std::vector<std::uint64_t> bytes;
  for (const RankState& state : states) bytes.push_back(state.bytes);
  blocks_.emplace(group_.rank(), bytes, writers_.of_ranks, writers_.request);
  round_ = 0;
  stage_ = Stage::opening;
  if (blocks_->has_blocks()) {
    thread_.hand_over([this, told] {
      error_ = utils::open_shared(told, file_);
      return true;
    });
  }
  return {SharedFile::State::grows};
}

SharedFile SharedText::pass_blocks() {
  std::vector<ranks::Message> sent;
  for (const ranks::FileBlocks::Part& part : blocks_->parts(round_)) {
    ranks::Message& message = sent.emplace_back(ranks::Message{part.writer, {}});
    const std::string_view text = own_.text().substr(part.first, part.count);
    ranks::append_values(message.bytes, std::span(&part.place, 1));
    ranks::append_values(message.bytes, std::span(text));
  }
  std::vector<ranks::Message> received = group_.send_to_some(std::move(sent));
  const bool is_last = ++round_ == blocks_->rounds();
  if (is_last) own_ = {};
  if (blocks_->has_blocks()) {
    thread_.hand_over([this, is_last, parts = std::move(received)] {
      write(parts);
      if (is_last) finish();
      return true;
    });
  }
  return {SharedFile::State::grows};
}

void SharedText::write(const std::vector<ranks::Message>& parts) {
  std::string blocks;  // that follow each other
  std::uint64_t place = 0;
  const auto put = [&] {
    if (error_ == 0) error_ = file_.write_at(place, blocks);
    blocks.clear();
  };
  for (const ranks::Message& part : parts) {
    std::uint64_t place_of_part = 0;
    std::memcpy(&place_of_part, part.bytes.data(), sizeof place_of_part);
    if (place + blocks.size() != place_of_part) put();
    if (blocks.empty()) place = place_of_part;
    const auto* const text = reinterpret_cast<const char*>(part.bytes.data());
    blocks.append(text + sizeof place_of_part, part.bytes.size() - sizeof place_of_part);
  }
  put();
}

void SharedText::finish() {
  if (error_ == 0) error_ = file_.sync();
  const int error_of_close = file_.close();
  if (error_ == 0) error_ = error_of_close;
}

SharedFile SharedText::end(SharedFile::State state, int rank, int error) {
  file_.close();
  error_ = 0;
  stage_ = Stage::making_text;
  const bool goes_to_first = state == SharedFile::State::is_refused && group_.rank() > 0;
  if (!goes_to_first) own_ = {};
  return {state, rank, error, blocks_ ? blocks_->bytes() : 0};
}

}  // namespace fields
