// A text that ranks have, one part behind the other, on its way into a file that several of them
// write: every writer gets blocks of it from the ranks that have them, between steps, and its
// thread puts them in their places.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "fields/Rows.hpp"
#include "ranks/FileBlocks.hpp"
#include "utils/OutputFile.hpp"
#include "utils/TextBuffer.hpp"
#include "utils/WriterThread.hpp"

namespace fields {

/// What ranks know of those that write.
struct Writers {
  ranks::WritersRequest request;
  std::vector<int> of_ranks;  ///< see ranks::writers_of
};

class SharedText {
 public:
  /// A thread makes the text of this rank, and writes afterwards. All must outlive it.
  SharedText(ranks::Group& group, const Writers& writers, utils::TextBuffer& own,
             utils::WriterThread& thread);

  /// On all ranks: does what comes next, unless any of them is busy with what came before. Rank 0
  /// says what file it is.
  SharedFile go_on(const utils::SharedPart* part);

 private:
  enum class Stage { making_text, opening, writing };
  /// What all ranks know of each.
  struct RankState {
    bool is_busy = true;
    int error = 0;
    std::uint64_t bytes = 0;
  };

  RankState own_state() const;
  SharedFile open(const utils::SharedPart* part, const std::vector<RankState>& states);
  SharedFile pass_blocks();
  /// In the thread: the parts of some blocks, by ascending ranks, each behind its place in the
  /// file.
  void write(const std::vector<ranks::Message>& parts);
  void finish();
  SharedFile end(SharedFile::State state, int rank, int error);

  ranks::Group& group_;
  const Writers& writers_;
  utils::TextBuffer& own_;
  utils::WriterThread& thread_;
  Stage stage_ = Stage::making_text;
  std::optional<ranks::FileBlocks> blocks_;
  std::uint64_t round_ = 0;
  // Of a writer.
  utils::WritableFile file_;
  int error_ = 0;
};

}  // namespace fields
