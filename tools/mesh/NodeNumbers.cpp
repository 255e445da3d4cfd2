#include "mesh/NodeNumbers.hpp"

#include <algorithm>

#include "support/Error.hpp"

namespace mesh_import {

NodeNumbers::NodeNumbers(Builder builder, const std::string& path) {
  const auto& numbers = builder.numbers_;
  if (numbers.empty()) return;
  const auto refuse = [&path](long long number) {
    throw tools::Error(path + ": two nodes have the number " + std::to_string(number) +
                       "; every node needs one of its own.");
  };
  const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end());
  first_ = *least;
  const auto span =
      static_cast<unsigned long long>(*most) - static_cast<unsigned long long>(first_);
  if (span < 4 * numbers.size()) {
    dense_.assign(span + 1, -1);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      int& index = dense_[static_cast<std::size_t>(numbers[i] - first_)];
      if (index >= 0) refuse(numbers[i]);
      index = static_cast<int>(i);
    }
    return;
  }
  by_number_.reserve(numbers.size());
  for (const long long number : numbers) {
    by_number_.emplace_back(number, static_cast<int>(by_number_.size()));
  }
  std::sort(by_number_.begin(), by_number_.end());
  for (std::size_t i = 1; i < by_number_.size(); ++i) {
    if (by_number_[i].first == by_number_[i - 1].first) refuse(by_number_[i].first);
  }
}

int NodeNumbers::find(long long number) const {
  if (!dense_.empty()) {
    const auto offset =
        static_cast<unsigned long long>(number) - static_cast<unsigned long long>(first_);
    return offset < dense_.size() ? dense_[offset] : -1;
  }
  const auto found =
      std::lower_bound(by_number_.begin(), by_number_.end(), std::make_pair(number, -1));
  return found != by_number_.end() && found->first == number ? found->second : -1;
}

}  // namespace mesh_import
