#include "mesh/check/case_fields.hpp"

#include <optional>
#include <set>

#include "mesh/check/checked_file.hpp"
#include "mesh/check/numbers.hpp"
#include "utils/known_keys.hpp"

namespace tools::check {

namespace {

namespace key = utils::key;
namespace section = utils::section;
using utils::path_of;
using utils::TextScanner;
using Column = std::vector<double>;

struct NamedColumn {
  const char* field;
  Column* values;
};

/// Reads the columns of a per-cell file; all of them stay empty if a value is refused.
void read_columns(const std::optional<std::string>& name, const std::string& key, int n_cells,
                  const std::vector<NamedColumn>& columns, Findings& findings) {
  if (!name) return;
  CheckedFile file(*name, key, findings);
  for (int k = 0; k < n_cells && file.is_open(); ++k) {
    file.begin_record("cell", k, n_cells);
    for (const NamedColumn& column : columns) column.values->push_back(file.number(column.field));
  }
  if (file.is_well()) return;
  for (const NamedColumn& column : columns) column.values->clear();
}

/// Checks that every ID of a per-cell file is -1 or one of those given.
void check_ids(const std::string& name, const std::string& key, int n_cells,
               const std::set<int>& ids, const std::string& what, Findings& findings) {
  constexpr int none = -1;
  CheckedFile file(name, key, findings);
  std::set<int> used;
  for (int k = 0; k < n_cells && file.is_open(); ++k) {
    file.begin_record("cell", k, n_cells);
    const int id =
        file.take(none, [](TextScanner& text) { return text.read_integer("source term ID"); });
    if (id == none) continue;
    used.insert(id);
    if (ids.count(id) == 0) {
      findings.error("source term ID", name + ", cell " + std::to_string(k) + ": found " + what +
                                           " " + std::to_string(id) +
                                           ", expected one that the case defines, or -1");
    }
  }
  for (const int id : ids) {
    if (file.is_well() && n_cells >= 0 && used.count(id) == 0) {
      findings.warning("unused " + what,
                       what + " " + std::to_string(id) + " is in no cell of " + name);
    }
  }
}

std::size_t number_of_parameters(const std::string& type) { return type == "GreenAmpt" ? 6 : 5; }

}  // namespace

CaseFields read_fields(const DataFile& data, int n_cells, Findings& findings) {
  CaseFields fields;
  read_columns(data.fixed_bed_level, path_of(section::conditions, key::fixed_bed_level), n_cells,
               {{"bed level", &fields.bed_rock}}, findings);
  read_columns(data.sediments_level, path_of(section::conditions, key::sediments_level), n_cells,
               {{"sediment thickness", &fields.sediment}}, findings);
  read_columns(data.friction, path_of(section::conditions, key::friction), n_cells,
               {{"Manning coefficient", &fields.friction}}, findings);
  read_columns(data.initial_conditions, path_of(section::conditions, key::initial_conditions),
               n_cells,
               {{"free-surface level", &fields.level},
                {"unit discharge qx", &fields.qx},
                {"unit discharge qy", &fields.qy}},
               findings);
  read_columns(data.initial_infiltration, path_of(section::sources, key::initial_infiltration),
               n_cells, {{"infiltrated depth", &fields.infiltrated}}, findings);
  return fields;
}

std::vector<Hyetogram> read_rain(const DataFile& data, int n_cells, Findings& findings) {
  std::vector<Hyetogram> rain;
  if (!data.rainfall) return rain;
  CheckedFile file(*data.rainfall, path_of(section::sources, key::rainfall), findings);
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of hyetograms", 3); });
  std::set<int> ids;
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("hyetogram", i, count);
    Hyetogram hyetogram;
    hyetogram.id = file.take(0, [](TextScanner& text) { return text.read_integer("ID"); });
    const int intervals = file.take_or_give_up(
        0, [](TextScanner& text) { return text.read_count("number of intervals", 2); });
    hyetogram.step = file.take(0, [](TextScanner& text) { return text.read_integer("step"); });
    for (int k = 0; k < intervals && file.is_open(); ++k) {
      hyetogram.times.push_back(file.number("start time of an interval"));
      hyetogram.intensities.push_back(file.number("intensity"));
    }
    if (!ids.insert(hyetogram.id).second) {
      findings.warning("repeated ID", *data.rainfall + ": hyetogram " +
                                          std::to_string(hyetogram.id) +
                                          " is defined twice; the later one counts");
    }
    rain.push_back(hyetogram);
  }
  if (!file.is_well()) rain.clear();
  if (data.hyetocells) {
    check_ids(*data.hyetocells, path_of(section::sources, key::hyetocells),
              file.is_well() ? n_cells : -1, ids, "hyetogram", findings);
  }
  return rain;
}

std::vector<Soil> read_soils(const DataFile& data, int n_cells, Findings& findings) {
  std::vector<Soil> soils;
  if (!data.infiltration) return soils;
  CheckedFile file(*data.infiltration, path_of(section::sources, key::infiltration), findings);
  const int count = file.take_or_give_up(
      0, [](TextScanner& text) { return text.read_count("number of soil classes", 2); });
  std::set<int> ids;
  for (int i = 0; i < count && file.is_open(); ++i) {
    file.begin_record("soil class", i, count);
    Soil soil;
    soil.id = file.take(0, [](TextScanner& text) { return text.read_integer("ID"); });
    soil.type = file.take_or_give_up(std::string(), [](TextScanner& text) {
      const std::string type = text.read_word("type");
      if (type != "GreenAmpt" && type != "Horton") text.refuse("type", "GreenAmpt or Horton");
      return type;
    });
    for (std::size_t k = 0; k < number_of_parameters(soil.type); ++k) {
      soil.parameters.push_back(file.number("parameter"));
    }
    if (!ids.insert(soil.id).second) {
      findings.warning("repeated ID", *data.infiltration + ": soil " + std::to_string(soil.id) +
                                          " is defined twice; the later one counts");
    }
    soils.push_back(soil);
  }
  if (!file.is_well()) soils.clear();
  if (data.infiltracells) {
    check_ids(*data.infiltracells, path_of(section::sources, key::infiltracells),
              file.is_well() ? n_cells : -1, ids, "soil", findings);
  }
  return soils;
}

}  // namespace tools::check
