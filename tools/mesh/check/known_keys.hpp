// The keys of the data file: where each belongs, what it holds, and when it is needed.
#pragma once

#include <string>
#include <vector>

#include "utils/data_file_keys.hpp"

namespace tools::check {

/// Paths of the sections of the data file.
namespace section {
inline const std::string mesh = utils::key::mesh;
inline const std::string model = utils::key::model;
inline const std::string conditions = model + "/" + utils::key::conditions;
inline const std::string parameters = model + "/" + utils::key::parameters;
inline const std::string sources = model + "/" + utils::key::sources;
inline const std::string output = utils::key::output;
}  // namespace section

/// The path of a key, as messages name it.
inline std::string path_of(const std::string& section, const std::string& name) {
  return section.empty() ? name : section + "/" + name;
}

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

  std::string path() const { return path_of(section, name); }
};

/// Every key, a section before what it holds.
const std::vector<KnownKey>& known_keys();

/// Completes a message about a key nobody knows: the place where it belongs, or the known key that
/// is spelt most nearly like it; empty if none resembles it.
std::string suggestion_for(const std::string& section, const std::string& name);

}  // namespace tools::check
