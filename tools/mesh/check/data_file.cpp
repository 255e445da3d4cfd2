#include "mesh/check/data_file.hpp"

#include <fstream>
#include <nlohmann/json.hpp>

#include "case/keys.hpp"
#include "case/nearest_key.hpp"
#include "case/plausibility.hpp"
#include "case/reference.hpp"
#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "utils/json_file.hpp"

namespace tools::check {

namespace {

using cases::Key;
using cases::key;
using cases::KeyKind;
using cases::path_of;
using cases::sediment_model;
using cases::water_model;
using Use = Key::Use;

/// The value under a path like "model/conditions", "" for the document; null if there is none.
const nlohmann::json* value_at(const nlohmann::json& document, std::string_view path) {
  const nlohmann::json::json_pointer place((path.empty() ? "" : "/") + std::string(path));
  return document.contains(place) ? &document.at(place) : nullptr;
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

/// Completes a message about a key nobody knows; empty if none resembles it.
std::string suggestion_for(const std::string& section, const std::string& name) {
  const Key* const nearest = cases::nearest_key(section, name);
  if (nearest == nullptr) return "";
  const bool is_here = nearest->section() == section;
  return "did you mean " + quoted(is_here ? std::string(nearest->name()) : nearest->path) + "?";
}

/// Compares a document with the table of known keys.
class KeyCheck {
 public:
  KeyCheck(const nlohmann::json& document, Findings& findings)
      : document_(document), findings_(findings) {
    const nlohmann::json* const name = value_at(document, key("model/name").path);
    has_sediments_ = name != nullptr && *name == sediment_model;
  }

  void check_all() {
    for (const Key& known : cases::keys) check(known);
    if (document_.is_object()) find_unknown(document_, "");
  }

  /// The value of a key that the run asks for, if it has the right type.
  template <class T>
  std::optional<T> value(const Key& known) const {
    const nlohmann::json* const found = value_at(document_, known.path);
    if (found == nullptr || !is_used(known) || !has_type(*found, known.kind)) return {};
    return found->get<T>();
  }

 private:
  static bool has_type(const nlohmann::json& value, KeyKind kind) {
    switch (kind) {
      case KeyKind::text:
      case KeyKind::file:
        return value.is_string();
      case KeyKind::number:
        return value.is_number();
      case KeyKind::point:
        return value.is_array() && value.size() == 2 && value[0].is_number() &&
               value[1].is_number();
      case KeyKind::section:
        return value.is_object();
    }
    return false;
  }
  static std::string name_of(KeyKind kind) {
    switch (kind) {
      case KeyKind::text:
      case KeyKind::file:
        return "text in quotes";
      case KeyKind::number:
        return "a number";
      case KeyKind::point:
        return "two numbers in brackets";
      case KeyKind::section:
        return "an object in braces";
    }
    return "";
  }

  /// Whether the run looks at a key that stands there.
  bool is_used(const Key& known) const {
    if (known.use == Use::sediments) return has_sediments_;
    if (known.use != Use::with_other) return true;
    return value_at(document_, known.other) != nullptr;
  }
  /// Whether a run takes its value: only those that write results in NetCDF ask for a point.
  bool is_read(const Key& known) const {
    if (&known == &key("$schema")) return false;
    return known.kind != KeyKind::point ||
           value_at(document_, key("output/results").path) != nullptr;
  }
  bool is_needed(const Key& known) const { return known.use != Use::optional && is_used(known); }

  void check(const Key& known) {
    const nlohmann::json* const value = value_at(document_, known.path);
    if (value == nullptr) {
      // Where a whole section is missing, its keys are not listed one by one.
      const bool can_stand = value_at(document_, known.section()) != nullptr;
      if (is_needed(known) && can_stand) {
        findings_.error("missing key",
                        quoted(known.path) + " is missing from the data file" + reason_for(known));
      }
      return;
    }
    if (!is_used(known)) {
      findings_.warning("unused key", quoted(known.path) + " is not used" + reason_against(known));
      return;
    }
    if (has_type(*value, known.kind)) return;
    const std::string text = quoted(known.path) + ": found " + shortened(value->dump()) +
                             ", expected " + name_of(known.kind);
    // To the simulator a section that is no object is an empty one.
    if (known.kind == KeyKind::section || !is_read(known)) {
      findings_.warning(wrong_type, text);
    } else {
      findings_.error(wrong_type, text);
    }
  }

  static std::string name_of_other(const Key& known) {
    return std::string(cases::last_name_of(known.other));
  }
  static std::string reason_for(const Key& known) {
    if (known.use == Use::sediments)
      return std::string("; the model ") + sediment_model + " needs it";
    if (known.use == Use::with_other) return "; " + quoted(name_of_other(known)) + " needs it";
    return "";
  }
  static std::string reason_against(const Key& known) {
    if (known.use == Use::with_other) return " without " + quoted(name_of_other(known));
    return std::string(" by any model but ") + sediment_model;
  }
  static std::string shortened(const std::string& text) {
    constexpr std::size_t shown = 40;
    return text.size() > shown ? text.substr(0, shown) + "..." : text;
  }

  void find_unknown(const nlohmann::json& object, const std::string& section) {
    for (const auto& [name, value] : object.items()) {
      const std::string path = path_of(section, name);
      const Key* const found = cases::find_key(section, name);
      if (found == nullptr) {
        const std::string suggestion = suggestion_for(section, name);
        findings_.warning(unknown_key, quoted(path) + " is unknown, and ignored" +
                                           (suggestion.empty() ? "" : "; " + suggestion));
      } else if (found->kind == KeyKind::section && value.is_object() &&
                 found != &key("extensions")) {
        find_unknown(value, path);
      }
    }
  }

  const nlohmann::json& document_;
  Findings& findings_;
  bool has_sediments_ = false;
};

DataFile values_of(const KeyCheck& keys) {
  DataFile data;
  for (const Key& known : cases::keys) {
    if (known.kind != KeyKind::file) continue;
    if (const auto name = keys.value<std::string>(known)) data.files.set(known, *name);
  }
  data.name = keys.value<std::string>(key("name"));
  data.t0 = keys.value<double>(key("t0"));
  data.tend = keys.value<double>(key("tend"));
  data.cfl = keys.value<double>(key("CFL"));
  data.model = keys.value<std::string>(key("model/name"));
  data.flux_scheme = keys.value<std::string>(key("model/flux scheme"));
  data.zero_depth = keys.value<double>(key("model/zero depth value"))
                        .value_or(cases::default_number(key("model/zero depth value")));
  data.mean_grain = keys.value<double>(key("model/parameters/sediments mean grain diameter"));
  data.density = keys.value<double>(key("model/parameters/sediments density"));
  data.porosity = keys.value<double>(key("model/parameters/sediments porosity"));
  data.folder = keys.value<std::string>(key("output/folder"));
  data.final_state = keys.value<std::string>(key("output/final state"));
  data.maxima = keys.value<std::string>(key("output/maxima of flow/file"));
  data.results = keys.value<std::string>(key("output/results"));
  data.arrival_depth = keys.value<double>(key("output/maxima of flow/arrival depth"));
  data.envelope_interval = keys.value<double>(key("output/time step enveloppe of results"));
  return data;
}

/// A text of which `read` must make something.
template <class Read>
void check_text(const KeyCheck& keys, const Key& known, const std::string& expected,
                const Read& read, Findings& findings) {
  const auto text = keys.value<std::string>(known);
  if (!text || read(*text)) return;
  findings.error("wrong value",
                 quoted(known.path) + ": found " + quoted(*text) + ", expected " + expected);
}

void check_result_name(const std::optional<std::string>& name, const Key& key, Findings& findings) {
  if (name && name->empty()) findings.error("output", cases::empty_result_name(key));
}

void check_run_parameters(const DataFile& data, Findings& findings) {
  if (data.model && *data.model != water_model && !data.has_sediments()) {
    findings.error("model", "\"model/name\" is \"" + *data.model + "\", expected \"" + water_model +
                                "\" or \"" + sediment_model + "\"");
  }
  if (data.t0 && data.tend) {
    findings.add_remark("run time", plausibility::on_run_time(*data.t0, *data.tend));
  }
  const bool has_infiltration =
      data.files.find(key("model/sources/infiltration")) != nullptr ||
      data.files.find(key("model/sources/initial infiltration")) != nullptr;
  findings.add_remark("infiltration",
                      plausibility::on_infiltration(has_infiltration, data.has_sediments()));
  if (data.cfl) findings.add_remark("Courant number", plausibility::on_courant_number(*data.cfl));
  findings.add_remark("zero depth",
                      plausibility::on_dry_depth(data.zero_depth, data.has_sediments()));
  if (data.envelope_interval) {
    findings.add_remark("envelope", plausibility::on_interval(
                                        quoted(key("output/time step enveloppe of results").path),
                                        *data.envelope_interval));
  }
  check_result_name(data.final_state, key("output/final state"), findings);
  check_result_name(data.maxima, key("output/maxima of flow/file"), findings);
  check_result_name(data.results, key("output/results"), findings);
  const bool has_times = data.files.find(key("output/results times")) != nullptr ||
                         data.files.find(key("output/snapshots of flow")) != nullptr;
  if (data.results && !has_times) findings.error("output", cases::results_without_times());
  if (data.arrival_depth) {
    const auto fault = cases::fault_of_arrival_depth(*data.arrival_depth);
    if (fault) findings.error("output", *fault);
  }
}

}  // namespace

bool DataFile::has_sediments() const { return model == sediment_model; }

DataFile read_data_file(const std::string& path, Findings& findings) {
  std::ifstream stream(path, std::ios::binary);
  nlohmann::json document;
  try {
    stream.peek();
    if (!stream) throw std::ios_base::failure("");
    document = utils::parse_json(stream, path);
  } catch (const nlohmann::json::exception& error) {
    findings.error("data file", path + " is not valid JSON: " + error.what());
    return {};
  } catch (const utils::JsonFileException& error) {
    findings.error("data file", finding_text(error.what()));
    return {};
  } catch (const std::ios_base::failure&) {
    findings.error("unreadable file", "the data file " + path + " can't be read");
    return {};
  }
  KeyCheck keys(document, findings);
  keys.check_all();
  check_text(keys, key("crs"), cases::expected_crs, cases::epsg_of, findings);
  check_text(keys, key("epoch"), cases::expected_epoch, cases::epoch_of, findings);
  const DataFile data = values_of(keys);
  if (data.results) {
    check_text(keys, key("output/results precision"), cases::expected_precision,
               cases::double_precision_of, findings);
  }
  check_run_parameters(data, findings);
  return data;
}

}  // namespace tools::check
