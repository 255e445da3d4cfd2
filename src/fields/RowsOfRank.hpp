// The rows of results that one of several ranks makes text or bytes of, and the way of these to
// those that write. The values come to the rank of the rows at once; the text is made in threads,
// and goes on piece by piece, as there is room for it: to rank 0, or block by block to several that
// write into the same file.
#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "fields/OwnRows.hpp"
#include "fields/SharedText.hpp"
#include "utils/WriterThread.hpp"

namespace fields {

/// What rows are asked for.
using AnyRowsRequest = std::variant<RowsRequest, ValuesRequest, SavedRequest>;

/// A file that several ranks write, as rank 0 knows it.
struct SharedTarget {
  utils::SharedPart part;
  std::string header;
};

class RowsOfRank {
 public:
  /// On all ranks, where rank 0 says how they write. The group must outlive it.
  RowsOfRank(ranks::Group& group, const ranks::WritersRequest& request);
  ~RowsOfRank();

  /// On all ranks: takes the present values of a result, which has a number, in place of those that
  /// another one had under it. Answers the rows of this rank; they stay where they are as long as
  /// results of the same kind have the number.
  const OwnTableRows& gather(int number, const RowsRequest& request, FlowOfRank& part);
  const OwnValueRows& gather(int number, const ValuesRequest& request, FlowOfRank& part);
  const OwnSavedRows& gather(int number, const SavedRequest& request, FlowOfRank& part);
  /// On all ranks: passes the next text of a rank on to rank 0, where it comes out, if it is made:
  /// so many bytes at most. Ends there with a Refusal where it could not be made.
  std::optional<RowText> pass(int number, int from, std::size_t largest);

  /// Whether there are several that write, and none of them has refused; in any thread.
  bool have_writers() const { return have_writers_; }
  /// On all ranks: lets them do what comes next for a file of a table that several write; on rank 0
  /// of a target, elsewhere of none. Where it is refused, pass() follows.
  SharedFile write_shared(int number, const SharedTarget* target);
  /// The thread that does so for this rank, until rows are gathered again.
  utils::WriterThread& thread_of(int number) { return results_.at(number)->thread; }

 private:
  /// Rows with their text.
  struct Result {
    Result(ranks::Group& group, const Writers& writers) : shared(group, writers, text, thread) {}

    std::unique_ptr<OwnRows> rows;
    bool has_text = false;  ///< or its thread makes it
    utils::TextBuffer text;
    std::size_t passed = 0;  ///< bytes of the text
    SharedText shared;
    utils::WriterThread thread;  ///< uses all that stands above
  };

  template <class Own, class Request, class... Arguments>
  const Own& gather_as(int number, const Request& request, FlowOfRank& part,
                       const Arguments&... arguments);
  static void make_text(Result& result, const std::string& header);
  std::optional<RowText> receive(int from);
  void send(Result& result, std::size_t largest);

  ranks::Group& group_;
  Writers writers_;
  std::atomic<bool> have_writers_;
  std::vector<double> centres_;  ///< of the rows of this rank: x of all, then y, then z, m
  std::vector<double> bed_;      ///< the same, at the start, m
  std::map<int, std::unique_ptr<Result>> results_;
};

}  // namespace fields
