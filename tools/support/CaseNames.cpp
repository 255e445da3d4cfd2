#include "support/CaseNames.hpp"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "support/Error.hpp"
#include "support/read_file.hpp"

namespace tools {

std::string text_of(const CaseNames& names) {
  const auto text = [](const nlohmann::json& value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  };
  return "{\n\"boundaries\": " + text(names.boundaries) + ",\n\"gauges\": " + text(names.gauges) +
         ",\n\"sections\": " + text(names.sections) + "\n}\n";
}

CaseNames read_case_names(const std::string& folder) {
  const std::string file = (std::filesystem::path(folder) / names_file_name).string();
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) return {};
  try {
    const nlohmann::json document = nlohmann::json::parse(read_file(file));
    CaseNames names;
    names.gauges = document.value("gauges", names.gauges);
    names.sections = document.value("sections", names.sections);
    names.boundaries = document.value("boundaries", names.boundaries);
    return names;
  } catch (const nlohmann::json::exception& error) {
    throw Error(file + ": found no names of a case (" + error.what() +
                "), expected an object with the lists \"gauges\" and \"sections\" and the object "
                "\"boundaries\".");
  }
}

std::vector<std::string> names_of_each(std::vector<std::string> names, std::size_t count) {
  if (names.size() != count) names.assign(count, "");
  return names;
}

}  // namespace tools
