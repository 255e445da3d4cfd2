// The names of files that a data file gives, by their keys.
#pragma once

#include <map>
#include <string>

#include "case/keys.hpp"

namespace cases {

/// Names are those of the data file: relative ones are found from the working directory.
class FileNames {
 public:
  void set(const Key& key, std::string name) { names_[&key] = std::move(name); }
  /// The name under a key; null if no file is asked for there.
  const std::string* find(const Key& key) const {
    const auto found = names_.find(&key);
    return found == names_.end() ? nullptr : &found->second;
  }
  /// The same, for a key under which a file is asked for.
  const std::string& at(const Key& key) const { return names_.at(&key); }

 private:
  std::map<const Key*, std::string> names_;
};

}  // namespace cases
