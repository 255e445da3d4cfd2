#include "ranks/SendPlan.hpp"

#include <algorithm>

namespace ranks {

SendPlan SendPlan::of_wanted(Group& group, const std::vector<Number>& wanted,
                             const Blocks& blocks) {
  std::vector<Message> questions;
  for (auto next = wanted.begin(); next != wanted.end();) {
    const int owner = blocks.owner_of(*next);
    const auto end = std::lower_bound(next, wanted.end(), blocks.end(owner));
    append_values<Number>(questions.emplace_back(Message{owner, {}}).bytes, std::span(next, end));
    next = end;
  }
  SendPlan plan(group);
  for (Message& question : group.send_to_some(std::move(questions))) {
    Target& target = plan.targets_.emplace_back(Target{question.rank, {}});
    target.records = values_of<Number>(question.bytes);
    for (Number& record : target.records) record -= blocks.begin(group.rank());
    question.bytes = {};
  }
  return plan;
}

}  // namespace ranks
