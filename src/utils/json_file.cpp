#include "utils/json_file.hpp"

namespace utils {

JsonTooDeepException::JsonTooDeepException(const std::string& file)
    : std::runtime_error("Error. The values in the file " + file + " are nested more than " +
                         std::to_string(deepest_json_level) + " levels deep, expected at most " +
                         std::to_string(deepest_json_level) + ".") {}

nlohmann::json parse_json(std::istream& stream, const std::string& file) {
  using nlohmann::json;
  const auto refuse_deep_values = [&](int enclosing, json::parse_event_t event, json&) {
    const bool begins =
        event == json::parse_event_t::object_start || event == json::parse_event_t::array_start;
    if (begins && enclosing >= deepest_json_level) throw JsonTooDeepException(file);
    return true;
  };
  return json::parse(stream, refuse_deep_values);
}

}  // namespace utils
