// From the numbers that a mesh file gives its nodes to their places in the file.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace mesh_import {

/// Numbers may be sparse and in any order.
class NodeNumbers {
 public:
  /// Collects the numbers in the order of the nodes.
  class Builder {
   public:
    void add(long long number) { numbers_.push_back(number); }

   private:
    friend class NodeNumbers;
    std::vector<long long> numbers_;
  };

  NodeNumbers() = default;
  /// Throws tools::Error, which names the file, where two nodes have the same number.
  NodeNumbers(Builder builder, const std::string& path);

  /// Index of the node, or -1 if no node has the number.
  int find(long long number) const;

 private:
  long long first_ = 0;
  std::vector<int> dense_;                            // by number - first_, -1 for none
  std::vector<std::pair<long long, int>> by_number_;  // where the numbers are sparse
};

}  // namespace mesh_import
