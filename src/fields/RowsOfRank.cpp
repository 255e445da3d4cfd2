#include "fields/RowsOfRank.hpp"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "ranks/in_step.hpp"
#include "ranks/values.hpp"

namespace fields {

namespace {

/// What comes before a piece of text.
struct PieceHeader {
  bool is_there = false, is_last = false, is_lost = false;
  std::uint64_t size = 0;
};

}  // namespace

RowsOfRank::RowsOfRank(ranks::Group& group, const ranks::WritersRequest& request)
    : group_(group), writers_{request, {}} {
  ranks::broadcast_plain(group, writers_.request);
  writers_.of_ranks = ranks::writers_of(ranks::gather_all_plain(group, group.first_on_machine()),
                                        writers_.request.count);
  const auto writes_nothing = [](int writer) { return writer == 0; };
  have_writers_ = !std::all_of(writers_.of_ranks.begin(), writers_.of_ranks.end(), writes_nothing);
}

RowsOfRank::~RowsOfRank() = default;

template <class Own, class Request, class... Arguments>
const Own& RowsOfRank::gather_as(int number, const Request& request, FlowOfRank& part,
                                 const Arguments&... arguments) {
  std::unique_ptr<Result>& kept = results_[number];
  const bool is_of_kind = kept && dynamic_cast<Own*>(kept->rows.get()) != nullptr;
  if (!is_of_kind || kept->thread.has_failed()) {
    kept = std::make_unique<Result>(group_, writers_);
    kept->rows = std::make_unique<Own>(arguments...);
  }
  Result& result = *kept;
  if (group_.rank() > 0) result.thread.wait();  // rank 0 would go on with its writers
  result.has_text = false;
  result.text.clear();
  result.passed = 0;
  auto& own = static_cast<Own&>(*result.rows);
  own.gather(request, part);
  if (group_.rank() > 0) make_text(result, "");
  return own;
}

void RowsOfRank::make_text(Result& result, const std::string& header) {
  result.has_text = true;
  result.thread.hand_over([&result, header] {
    result.text << header;
    result.rows->make_text(result.text);
    return true;
  });
}

SharedFile RowsOfRank::write_shared(int number, const SharedTarget* target) {
  Result& result = *results_.at(number);
  // Rank 0 knows only now that somebody wants its text.
  if (!result.has_text) make_text(result, target->header);
  const SharedFile file = result.shared.go_on(target != nullptr ? &target->part : nullptr);
  if (file.state == SharedFile::State::is_refused) have_writers_ = false;
  return file;
}

const OwnTableRows& RowsOfRank::gather(int number, const RowsRequest& request, FlowOfRank& part) {
  if (centres_.empty()) part.centres_of_rows(centres_);
  return gather_as<OwnTableRows>(number, request, part, centres_);
}

const OwnValueRows& RowsOfRank::gather(int number, const ValuesRequest& request, FlowOfRank& part) {
  if (bed_.empty()) part.beds_of_rows(bed_);
  return gather_as<OwnValueRows>(number, request, part, bed_);
}

const OwnSavedRows& RowsOfRank::gather(int number, const SavedRequest& request, FlowOfRank& part) {
  return gather_as<OwnSavedRows>(number, request, part);
}

std::optional<RowText> RowsOfRank::pass(int number, int from, std::size_t largest) {
  if (group_.rank() == 0) return receive(from);
  if (group_.rank() == from) send(*results_.at(number), largest);
  return {};
}

std::optional<RowText> RowsOfRank::receive(int from) {
  PieceHeader header;
  group_.receive(std::as_writable_bytes(std::span(&header, 1)), from);
  if (header.is_lost) {
    throw ranks::Refusal(
        utils::FatalError("rank " + std::to_string(from) + " could not make its rows of it\n"));
  }
  if (!header.is_there) return {};
  RowText piece = {std::string(header.size, ' '), header.is_last};
  group_.receive(std::as_writable_bytes(std::span(piece.text)), from);
  return piece;
}

void RowsOfRank::send(Result& result, std::size_t largest) {
  PieceHeader header;
  const auto header_bytes = std::as_bytes(std::span(&header, 1));
  if (result.thread.is_busy()) return group_.send(header_bytes, 0);
  header.is_lost = result.thread.has_failed();
  if (header.is_lost) return group_.send(header_bytes, 0);
  const std::string_view left = result.text.text().substr(result.passed);
  const std::string_view piece = left.substr(0, largest);
  header = {true, piece.size() == left.size(), false, piece.size()};
  group_.send(header_bytes, 0);
  group_.send(std::as_bytes(std::span(piece)), 0);
  result.passed += piece.size();
  if (header.is_last) result.text = {};
}

}  // namespace fields
