// The keys of the data file: where each belongs, what it holds, and when it is needed.
#pragma once

#include <string>
#include <vector>

#include "utils/data_file_keys.hpp"

namespace utils {

/// Paths of the sections of the data file.
namespace section {
inline const std::string mesh = key::mesh;
inline const std::string model = key::model;
inline const std::string conditions = model + "/" + key::conditions;
inline const std::string parameters = model + "/" + key::parameters;
inline const std::string sources = model + "/" + key::sources;
inline const std::string output = key::output;
}  // namespace section

/// The path of a key, as messages name it.
inline std::string path_of(const std::string& section, const std::string& name) {
  return section.empty() ? name : section + "/" + name;
}

/// A file is a text that names something to read, a point two numbers in brackets.
enum class KeyType { text, file, number, point, section };

struct KnownKey {
  /// When the simulator asks for a key: in every run, with sediments, if it stands there, or if
  /// another one of its section stands there.
  enum class Use { always, sediments, optional, with_other };

  std::string section;  ///< "" at the top, "model/conditions" further down
  std::string name;
  KeyType type;
  Use use;
  /// For `optional`: what takes its place where it does not stand; empty for a key that no run asks
  /// for. For `with_other`: the other key.
  std::string other = {};

  std::string path() const { return path_of(section, name); }
};

/// Every key, a section before what it holds.
const std::vector<KnownKey>& known_keys();

/// The known key that a misspelt or misplaced one resembles most, of two alike that of the same
/// section; null if none resembles it.
const KnownKey* nearest_key(const std::string& section, const std::string& name);

}  // namespace utils
