#include "mesh/check/case_fields.hpp"

#include <initializer_list>
#include <optional>
#include <set>

#include "case/keys.hpp"
#include "case/read_fields.hpp"
#include "case/read_rain.hpp"
#include "case/read_soils.hpp"
#include "mesh/check/checked_file.hpp"

namespace tools::check {

namespace {

using cases::CellFields;
using cases::key;
using cases::Number;

/// For files with a record per cell.
Number cells_to_read(const CheckedCase& checked) {
  return checked.has_cells ? checked.contents.mesh.n_cells() : 0;
}

/// Reads the terms of the cells, whose IDs must be -1 or one of those given.
std::vector<int> read_terms(const std::string& name, const std::string& key, Number n_cells,
                            const std::vector<int>& ids, const std::string& what,
                            Findings& findings) {
  CheckedFile file(name, key, findings);
  const auto on_unknown = [&](Number cell, int id) {
    findings.error("source term ID", name + ", cell " + std::to_string(cell) + ": found " + what +
                                         " " + std::to_string(id) +
                                         ", expected one that the case defines, or -1");
  };
  const std::vector<int> terms = cases::read_terms(file, n_cells, ids, on_unknown);
  if (!file.is_well() || n_cells == 0) return {};
  std::set<int> unused(ids.begin(), ids.end());
  for (const int term : terms) {
    if (term >= 0) unused.erase(ids[cases::at(term)]);
  }
  for (const int id : unused) {
    findings.warning("unused " + what,
                     what + " " + std::to_string(id) + " is in no cell of " + name);
  }
  return terms;
}

/// Warns of terms that bear the ID of an earlier one.
class RepeatedIds {
 public:
  /// `term` names one of them: "rain.txt: hyetogram".
  RepeatedIds(std::string term, Findings& findings) : term_(std::move(term)), findings_(findings) {}

  void look_at(int id) {
    if (seen_.insert(id).second) return;
    findings_.warning("repeated ID",
                      term_ + " " + std::to_string(id) + " is defined twice; the later one counts");
  }

 private:
  std::string term_;
  Findings& findings_;
  std::set<int> seen_;
};

}  // namespace

void read_fields(const DataFile& data, CheckedCase& checked, Findings& findings) {
  CellFields& fields = checked.contents.fields;
  const auto read = [&](const std::optional<std::string>& name, const std::string& key,
                        std::initializer_list<std::vector<double>*> columns, auto read_columns) {
    if (!name) return;
    CheckedFile file(*name, key, findings);
    read_columns(file, cells_to_read(checked), fields);
    if (file.is_well()) return;
    for (std::vector<double>* column : columns) column->clear();
  };
  using File = CheckedFile;
  read(data.fixed_bed_level, key("model/conditions/fixed bed level").path, {&fields.bed},
       cases::read_bed<File>);
  read(data.sediments_level, key("model/conditions/initial sediments level").path,
       {&fields.sediment}, cases::read_sediment<File>);
  read(data.friction, key("model/conditions/friction").path, {&fields.manning},
       cases::read_manning<File>);
  read(data.initial_conditions, key("model/conditions/initial conditions").path,
       {&fields.level, &fields.qx, &fields.qy}, cases::read_initial_state<File>);
  read(data.initial_infiltration, key("model/sources/initial infiltration").path,
       {&fields.infiltrated}, cases::read_infiltrated<File>);
}

void read_rain(const DataFile& data, CheckedCase& checked, Findings& findings) {
  if (!data.rainfall) return;
  cases::Case& contents = checked.contents;
  CheckedFile file(*data.rainfall, key("model/sources/rainfall").path, findings);
  RepeatedIds repeated(*data.rainfall + ": hyetogram", findings);
  contents.rain =
      cases::read_hyetograms(file, [&](const cases::Hyetogram& h) { repeated.look_at(h.id); });
  if (!file.is_well()) contents.rain.clear();
  if (!data.hyetocells) return;
  contents.fields.rain = read_terms(*data.hyetocells, key("model/sources/hyetocells").path,
                                    file.is_well() ? cells_to_read(checked) : 0,
                                    cases::ids_of(contents.rain), "hyetogram", findings);
}

void read_soils(const DataFile& data, CheckedCase& checked, Findings& findings) {
  if (!data.infiltration) return;
  cases::Case& contents = checked.contents;
  CheckedFile file(*data.infiltration, key("model/sources/infiltration").path, findings);
  RepeatedIds repeated(*data.infiltration + ": soil", findings);
  contents.soils = cases::read_soil_classes(
      file, [&](const cases::Soil& soil) { repeated.look_at(soil.id); },
      [&](const std::string&) {
        file.refuse("type", "GreenAmpt or Horton");
        file.give_up();
      });
  if (!file.is_well()) contents.soils.clear();
  if (!data.infiltracells) return;
  contents.fields.soil = read_terms(*data.infiltracells, key("model/sources/infiltracells").path,
                                    file.is_well() ? cells_to_read(checked) : 0,
                                    cases::ids_of(contents.soils), "soil", findings);
}

}  // namespace tools::check
