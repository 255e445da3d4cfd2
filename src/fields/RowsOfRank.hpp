// The rows of results that one of several ranks makes text or bytes of, and the way of these to
// rank 0, which alone writes. The values come to the rank of the rows at once; the text is made in
// threads, and goes to rank 0 piece by piece, as there is room for it.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "fields/OwnRows.hpp"
#include "utils/WriterThread.hpp"

namespace fields {

/// What rows are asked for.
using AnyRowsRequest = std::variant<RowsRequest, ValuesRequest, SavedRequest>;

class RowsOfRank {
 public:
  /// The group must outlive it.
  explicit RowsOfRank(ranks::Group& group);
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

 private:
  /// Rows with their text.
  struct Result {
    std::unique_ptr<OwnRows> rows;
    utils::TextBuffer text;
    std::size_t passed = 0;         ///< bytes of the text
    utils::WriterThread formatter;  ///< uses all that stands above
  };

  template <class Own, class Request, class... Arguments>
  const Own& gather_as(int number, const Request& request, FlowOfRank& part,
                       const Arguments&... arguments);
  std::optional<RowText> receive(int from);
  void send(Result& result, std::size_t largest);

  ranks::Group& group_;
  std::vector<double> centres_;  ///< of the rows of this rank: x of all, then y, then z, m
  std::vector<double> bed_;      ///< the same, at the start, m
  std::map<int, std::unique_ptr<Result>> results_;
};

}  // namespace fields
