#include "utils/json_file.hpp"

#include <iterator>

#include "utils/text_encoding.hpp"

namespace utils {

nlohmann::json parse_json(std::istream& stream, const std::string& file) {
  using nlohmann::json;
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  if (is_utf16(text)) {
    throw JsonFileException("Error in file " + file + ": " + found_utf16 + ".");
  }
  const std::string deepest = std::to_string(deepest_json_level);
  const auto refuse_deep_values = [&](int enclosing, json::parse_event_t event, json&) {
    const bool begins =
        event == json::parse_event_t::object_start || event == json::parse_event_t::array_start;
    if (begins && enclosing >= deepest_json_level) {
      throw JsonFileException("Error. The values in the file " + file + " are nested more than " +
                              deepest + " levels deep, expected at most " + deepest + ".");
    }
    return true;
  };
  return json::parse(text, refuse_deep_values);
}

}  // namespace utils
