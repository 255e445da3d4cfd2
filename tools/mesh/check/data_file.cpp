#include "mesh/check/data_file.hpp"

#include <fstream>
#include <nlohmann/json.hpp>

#include "case/plausibility.hpp"
#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "utils/json_file.hpp"
#include "utils/known_keys.hpp"

namespace tools::check {

namespace {

namespace key = utils::key;
namespace section = utils::section;
using utils::KeyType;
using utils::known_keys;
using utils::KnownKey;
using utils::path_of;
using Use = KnownKey::Use;

constexpr char hydrodynamic_model[] = "Quillmere";
constexpr char sediment_model[] = "Bramsett";

/// The value under a path like "model/conditions"; null if there is none.
const nlohmann::json* value_at(const nlohmann::json& document, const std::string& path) {
  const nlohmann::json* value = &document;
  std::size_t begin = 0;
  while (begin < path.size()) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string name = path.substr(begin, end - begin);
    if (!value->is_object() || !value->contains(name)) return nullptr;
    value = &value->at(name);
    begin = end + 1;
  }
  return value;
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

/// Completes a message about a key nobody knows; empty if none resembles it.
std::string suggestion_for(const std::string& section, const std::string& name) {
  const KnownKey* const nearest = utils::nearest_key(section, name);
  if (nearest == nullptr) return "";
  return "did you mean " + quoted(nearest->section == section ? nearest->name : nearest->path()) +
         "?";
}

/// Compares a document with the table of known keys.
class KeyCheck {
 public:
  KeyCheck(const nlohmann::json& document, Findings& findings)
      : document_(document), findings_(findings) {
    const nlohmann::json* const name = value_at(document, path_of(section::model, key::model_name));
    has_sediments_ = name != nullptr && *name == sediment_model;
  }

  void check_all() {
    for (const KnownKey& known : known_keys()) check(known);
    if (document_.is_object()) find_unknown(document_, "");
  }

  /// The value of a key that the run asks for, if it has the right type.
  template <class T>
  std::optional<T> value(const std::string& section, const std::string& name) const {
    for (const KnownKey& known : known_keys()) {
      if (known.section != section || known.name != name) continue;
      const nlohmann::json* const found = value_at(document_, known.path());
      if (found == nullptr || !is_used(known) || !has_type(*found, known.type)) return {};
      return found->get<T>();
    }
    return {};
  }

 private:
  static bool has_type(const nlohmann::json& value, KeyType type) {
    switch (type) {
      case KeyType::text:
      case KeyType::file:
        return value.is_string();
      case KeyType::number:
        return value.is_number();
      case KeyType::point:
        return value.is_array() && value.size() == 2 && value[0].is_number() &&
               value[1].is_number();
      case KeyType::section:
        return value.is_object();
    }
    return false;
  }
  static std::string name_of(KeyType type) {
    switch (type) {
      case KeyType::text:
      case KeyType::file:
        return "text in quotes";
      case KeyType::number:
        return "a number";
      case KeyType::point:
        return "two numbers in brackets";
      case KeyType::section:
        return "an object in braces";
    }
    return "";
  }

  /// Whether the run looks at a key that stands there.
  bool is_used(const KnownKey& known) const {
    if (known.use == Use::sediments) return has_sediments_;
    if (known.use != Use::with_other) return true;
    return value_at(document_, known.section + "/" + known.other) != nullptr;
  }
  bool is_needed(const KnownKey& known) const {
    return known.use != Use::optional && is_used(known);
  }

  void check(const KnownKey& known) {
    const nlohmann::json* const value = value_at(document_, known.path());
    if (value == nullptr) {
      // What a missing section would hold is not listed.
      const bool can_stand = value_at(document_, known.section) != nullptr;
      if (is_needed(known) && can_stand) {
        findings_.error("missing key", quoted(known.path()) + " is missing from the data file" +
                                           reason_for(known));
      }
      return;
    }
    if (!is_used(known)) {
      findings_.warning("unused key",
                        quoted(known.path()) + " is not used" + reason_against(known));
      return;
    }
    if (has_type(*value, known.type)) return;
    const std::string text = quoted(known.path()) + ": found " + shortened(value->dump()) +
                             ", expected " + name_of(known.type);
    // To the simulator a section that is no object is an empty one, and no run asks for a point.
    if (known.type == KeyType::section || known.type == KeyType::point) {
      findings_.warning("wrong type", text);
    } else {
      findings_.error("wrong type", text);
    }
  }

  static std::string reason_for(const KnownKey& known) {
    if (known.use == Use::sediments)
      return std::string("; the model ") + sediment_model + " needs it";
    if (known.use == Use::with_other) return "; " + quoted(known.other) + " needs it";
    return "";
  }
  static std::string reason_against(const KnownKey& known) {
    if (known.use == Use::with_other) return " without " + quoted(known.other);
    return std::string(" by any model but ") + sediment_model;
  }
  static std::string shortened(const std::string& text) {
    constexpr std::size_t shown = 40;
    return text.size() > shown ? text.substr(0, shown) + "..." : text;
  }

  void find_unknown(const nlohmann::json& object, const std::string& section) {
    for (const auto& [name, value] : object.items()) {
      const KnownKey* found = nullptr;
      for (const KnownKey& known : known_keys()) {
        if (known.section == section && known.name == name) found = &known;
      }
      const std::string path = path_of(section, name);
      if (found == nullptr) {
        const std::string suggestion = suggestion_for(section, name);
        findings_.warning("unknown key", quoted(path) + " is unknown, and ignored" +
                                             (suggestion.empty() ? "" : "; " + suggestion));
      } else if (found->type == KeyType::section && value.is_object() && name != key::extensions) {
        find_unknown(value, path);
      }
    }
  }

  const nlohmann::json& document_;
  Findings& findings_;
  bool has_sediments_ = false;
};

DataFile values_of(const KeyCheck& keys) {
  constexpr double default_zero_depth = 0.0001;

  DataFile data;
  data.name = keys.value<std::string>("", key::simulation_name);
  data.t0 = keys.value<double>("", key::start_time);
  data.tend = keys.value<double>("", key::end_time);
  data.cfl = keys.value<double>("", key::cfl);
  data.nodes = keys.value<std::string>(section::mesh, key::nodes);
  data.cells = keys.value<std::string>(section::mesh, key::cells);
  data.edges = keys.value<std::string>(section::mesh, key::edges);
  data.model = keys.value<std::string>(section::model, key::model_name);
  data.flux_scheme = keys.value<std::string>(section::model, key::flux_scheme);
  data.zero_depth =
      keys.value<double>(section::model, key::zero_depth).value_or(default_zero_depth);
  data.initial_conditions = keys.value<std::string>(section::conditions, key::initial_conditions);
  data.fixed_bed_level = keys.value<std::string>(section::conditions, key::fixed_bed_level);
  data.friction = keys.value<std::string>(section::conditions, key::friction);
  data.sediments_level = keys.value<std::string>(section::conditions, key::sediments_level);
  data.mean_grain = keys.value<double>(section::parameters, key::mean_grain);
  data.density = keys.value<double>(section::parameters, key::density);
  data.porosity = keys.value<double>(section::parameters, key::porosity);
  data.rainfall = keys.value<std::string>(section::sources, key::rainfall);
  data.hyetocells = keys.value<std::string>(section::sources, key::hyetocells);
  data.infiltration = keys.value<std::string>(section::sources, key::infiltration);
  data.infiltracells = keys.value<std::string>(section::sources, key::infiltracells);
  data.initial_infiltration = keys.value<std::string>(section::sources, key::initial_infiltration);
  data.folder = keys.value<std::string>(section::output, key::folder);
  data.dt_enveloppe = keys.value<double>(section::output, key::dt_enveloppe);
  data.pictures = keys.value<std::string>(section::output, key::pictures);
  data.gauges = keys.value<std::string>(section::output, key::gauges);
  data.discharges = keys.value<std::string>(section::output, key::discharges);
  return data;
}

void check_run_parameters(const DataFile& data, Findings& findings) {
  if (data.model && *data.model != hydrodynamic_model && !data.has_sediments()) {
    findings.error("model", "\"model/name\" is \"" + *data.model + "\", expected \"" +
                                hydrodynamic_model + "\" or \"" + sediment_model + "\"");
  }
  if (data.t0 && data.tend) {
    findings.add_remark("run time", plausibility::on_run_time(*data.t0, *data.tend));
  }
  findings.add_remark("infiltration",
                      plausibility::on_infiltration(data.infiltration || data.initial_infiltration,
                                                    data.has_sediments()));
  if (data.cfl) findings.add_remark("Courant number", plausibility::on_courant_number(*data.cfl));
  findings.add_remark("zero depth",
                      plausibility::on_dry_depth(data.zero_depth, data.has_sediments()));
  if (data.dt_enveloppe) {
    findings.add_remark(
        "envelope", plausibility::on_interval(quoted(path_of(section::output, key::dt_enveloppe)),
                                              *data.dt_enveloppe));
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
  } catch (const utils::JsonTooDeepException& error) {
    findings.error("data file", finding_text(error.what()));
    return {};
  } catch (const std::ios_base::failure&) {
    findings.error("unreadable file", "the data file " + path + " can't be read");
    return {};
  }
  KeyCheck keys(document, findings);
  keys.check_all();
  const DataFile data = values_of(keys);
  check_run_parameters(data, findings);
  return data;
}

}  // namespace tools::check
