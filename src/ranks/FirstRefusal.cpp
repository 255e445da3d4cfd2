#include "ranks/FirstRefusal.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "ranks/values.hpp"

namespace ranks {

namespace {

/// What an exception tells.
struct Told {
  std::string text, output;
  int status;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.text, self.output, self.status);
  }
};

Told told_by_rank(const std::exception_ptr& error) {
  const utils::FatalError told = told_by(error);
  return {told.text(), told.output(), told.status()};
}

}  // namespace

std::int64_t FirstRefusal::record_of_all(Group& group) const {
  const std::vector<std::int64_t> records = gather_all_plain(group, record_);
  return *std::min_element(records.begin(), records.end());
}

void FirstRefusal::end(Group& group) const {
  const std::vector<std::int64_t> records = gather_all_plain(group, record_);
  const auto first = std::min_element(records.begin(), records.end());
  if (*first == none) return;
  const int teller = static_cast<int>(first - records.begin());
  Told told{};
  if (group.rank() == teller) told = told_by_rank(error_);
  if (teller > 0) {
    if (group.rank() == teller) send_value(group, told, 0);
    if (group.rank() == 0) told = receive_value<Told>(group, teller);
  }
  if (group.rank() == 0) {
    broadcast_out(group, told);
  } else {
    broadcast_in(group, told);
  }
  if (group.rank() == 0 && teller == 0) throw Refusal(error_);
  throw Refusal(utils::FatalError(told.text, told.status, told.output));
}

void do_together(Group& group, const std::function<void()>& step) {
  FirstRefusal refusal;
  refusal.keep(step, [] { return FirstRefusal::at_start; });
  refusal.end(group);
}

}  // namespace ranks
