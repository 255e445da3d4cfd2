#include "case/data_file_schema.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "case/keys.hpp"
#include "case/schemes.hpp"

namespace cases {

namespace {

using Json = nlohmann::ordered_json;
using Use = Key::Use;

/// The place of a key in a schema: "/properties/mesh/properties/nodes" of "mesh/nodes".
Json::json_pointer place_of(std::string_view path) {
  Json::json_pointer place;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    place /= "properties";
    place /= std::string(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return place;
}

/// The object that holds other keys; one that stands for later may hold anything.
Json section_schema(bool is_open) {
  Json schema = {{"type", "object"}};
  if (!is_open) schema["additionalProperties"] = false;
  return schema;
}

Json type_of(const Key& key) {
  switch (key.kind) {
    case KeyKind::text:
    case KeyKind::file:
      return {{"type", "string"}};
    case KeyKind::number:
      return {{"type", "number"}};
    case KeyKind::point:
      return {{"type", "array"}, {"items", {{"type", "number"}}}, {"minItems", 2}, {"maxItems", 2}};
    case KeyKind::section:
      return section_schema(&key == &cases::key("extensions"));
  }
  return {};
}

/// The schemes that a model has.
Json names_of_schemes(bool with_sediments) {
  Json names = Json::array();
  for (const SchemeKind& kind : schemes) {
    if (kind.with_sediments || !with_sediments) names.push_back(kind.name);
  }
  return names;
}

/// What runs ask of a value beyond its type.
Json limits_of(const Key& key) {
  const auto is = [&key](const Key& other) { return &key == &other; };
  if (is(cases::key("crs"))) return {{"pattern", "^(EPSG|epsg):[0-9]{1,8}$"}};
  if (is(cases::key("epoch"))) {
    return {{"pattern",
             "^[0-9]{4}-[0-9]{2}-[0-9]{2}"
             "(T[0-9]{2}:[0-9]{2}:[0-9]{2}Z| [0-9]{2}:[0-9]{2}:[0-9]{2})$"}};
  }
  if (is(cases::key("model/name"))) return {{"enum", Json::array({water_model, sediment_model})}};
  if (is(cases::key("model/flux scheme"))) return {{"enum", names_of_schemes(false)}};
  if (is(cases::key("model/parameters/sediments porosity"))) {
    return {{"minimum", 0}, {"exclusiveMaximum", 1}};
  }
  if (is(cases::key("output/results precision")))
    return {{"enum", Json::array({"single", "double"})}};
  if (is(cases::key("output/maxima of flow/arrival depth"))) return {{"minimum", 0}};
  if (is(cases::key("output/final state")) || is(cases::key("output/maxima of flow/file")) ||
      is(cases::key("output/results"))) {
    return {{"minLength", 1}};
  }
  return Json::object();
}

std::string description_of(const Key& key) {
  std::string text = key.meaning;
  if (key.kind == KeyKind::file) text = "Name of a file: " + text;
  if (*key.unit != '\0') text += " [" + std::string(key.unit) + "]";
  if (key.use == Use::sediments) text += "; for the model " + std::string(sediment_model);
  const std::string usual = default_of(key);
  if (!usual.empty()) text += "; otherwise " + usual;
  return text;
}

Json schema_of(const Key& key) {
  Json schema = type_of(key);
  schema.update(limits_of(key));
  schema["description"] = description_of(key);
  if (key.kind == KeyKind::number && *key.other != '\0') schema["default"] = default_number(key);
  return schema;
}

/// What the model with sediments asks for besides.
Json of_sediments() {
  Json schema;
  for (const Key& key : keys) {
    if (key.use != Use::sediments) continue;
    schema[place_of(key.section()) / "required"].push_back(key.name());
  }
  schema[place_of("model/flux scheme") / "enum"] = names_of_schemes(true);
  return schema;
}

Json is_of_sediments() {
  Json schema;
  schema[place_of("model/name") / "const"] = sediment_model;
  schema[place_of("model") / "required"] = Json::array({"name"});
  schema["required"] = Json::array({"model"});
  return schema;
}

/// Results in NetCDF need times.
Json times_of_results() {
  Json choices = Json::array();
  for (const Key* const times : {&key("output/results times"), &key("output/snapshots of flow")}) {
    choices.push_back({{"required", Json::array({times->name()})}});
  }
  return {{"anyOf", choices}};
}

}  // namespace

std::string data_file_schema() {
  Json schema = {{"$schema", "http://json-schema.org/draft-07/schema#"},
                 {"title", "Data file of Quillmere"}};
  schema.update(section_schema(false));
  for (const Key& key : keys) {
    schema[place_of(key.path)] = schema_of(key);
    const Json::json_pointer section = place_of(key.section());
    if (key.use == Use::always) schema[section / "required"].push_back(key.name());
    if (key.use == Use::with_other) {
      schema[section / "dependencies"][std::string(last_name_of(key.other))].push_back(key.name());
    }
  }
  constexpr const Key& results = key("output/results");
  schema[place_of(results.section()) / "dependencies"][std::string(results.name())] =
      times_of_results();
  schema["if"] = is_of_sediments();
  schema["then"] = of_sediments();
  return schema.dump(2) + "\n";
}

}  // namespace cases
