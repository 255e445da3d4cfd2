// JSON that others wrote, which may be nested as deeply as they please.
#pragma once

#include <istream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace utils {

/// Levels of objects and arrays that a JSON file may have: what walks its values recurses.
inline constexpr int deepest_json_level = 100;

/// A file that is refused whatever its values are.
class JsonFileException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Parses the whole stream; `file` names it in messages. Throws a JsonFileException for UTF-16
/// text, and for values that are nested too deeply while they are still few, and the library's own
/// exception for what is no JSON.
nlohmann::json parse_json(std::istream& stream, const std::string& file);

}  // namespace utils
