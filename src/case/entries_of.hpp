// Some of the entries of a column.
#pragma once

#include <span>
#include <vector>

#include "case/Mesh.hpp"

namespace cases {

/// Those under some numbers, in their order; none of an empty column, which stands for one value
/// everywhere.
template <class Value>
std::vector<Value> entries_of(const std::vector<Value>& column, std::span<const Number> numbers) {
  std::vector<Value> entries;
  if (column.empty()) return entries;
  entries.reserve(numbers.size());
  for (const Number number : numbers) entries.push_back(column[at(number)]);
  return entries;
}

}  // namespace cases
