// The keys of the data file: where each belongs, what it holds, and when it is needed.
#pragma once

#include <string>
#include <vector>

namespace tools {

enum class KeyType { text, number, section };

struct KnownKey {
  /// When the simulator asks for a key: in every run, with sediments, if it stands there, or if
  /// another one of its section stands there.
  enum class Use { always, sediments, optional, with_other };

  std::string section;  ///< "" at the top, "model/conditions" further down
  std::string name;
  KeyType type;
  Use use;
  std::string other = {};  ///< the other key, for `with_other`

  std::string path() const { return section.empty() ? name : section + "/" + name; }
};

/// Every key, a section before what it holds.
const std::vector<KnownKey>& known_keys();

/// Completes a message about a key nobody knows: the place where it belongs, or the known key that
/// is spelt most nearly like it; empty if none resembles it.
std::string suggestion_for(const std::string& section, const std::string& name);

}  // namespace tools
