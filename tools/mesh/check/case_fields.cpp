#include "mesh/check/case_fields.hpp"

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
  for (const cases::CellFile& described : cases::cell_files) {
    const std::string* const name = data.files.find(described.key);
    if (name == nullptr) continue;
    CheckedFile file(*name, described.key.path, findings);
    cases::read_cell_file(described, file, cells_to_read(checked), fields);
    if (file.is_well()) continue;
    for (const cases::CellColumn& column : described.columns()) (fields.*column.values).clear();
  }
}

void read_rain(const DataFile& data, CheckedCase& checked, Findings& findings) {
  const std::string* const name = data.files.find(key("model/sources/rainfall"));
  if (name == nullptr) return;
  cases::Case& contents = checked.contents;
  CheckedFile file(*name, key("model/sources/rainfall").path, findings);
  RepeatedIds repeated(*name + ": hyetogram", findings);
  contents.rain =
      cases::read_hyetograms(file, [&](const cases::Hyetogram& h) { repeated.look_at(h.id); });
  if (!file.is_well()) contents.rain.clear();
  const std::string* const of_cells = data.files.find(key("model/sources/hyetocells"));
  if (of_cells == nullptr) return;
  contents.fields.rain = read_terms(*of_cells, key("model/sources/hyetocells").path,
                                    file.is_well() ? cells_to_read(checked) : 0,
                                    cases::ids_of(contents.rain), "hyetogram", findings);
}

void read_soils(const DataFile& data, CheckedCase& checked, Findings& findings) {
  const std::string* const name = data.files.find(key("model/sources/infiltration"));
  if (name == nullptr) return;
  cases::Case& contents = checked.contents;
  CheckedFile file(*name, key("model/sources/infiltration").path, findings);
  RepeatedIds repeated(*name + ": soil", findings);
  contents.soils = cases::read_soil_classes(
      file, [&](const cases::Soil& soil) { repeated.look_at(soil.id); },
      [&](const std::string&) {
        file.refuse("type", "GreenAmpt or Horton");
        file.give_up();
      });
  if (!file.is_well()) contents.soils.clear();
  const std::string* const of_cells = data.files.find(key("model/sources/infiltracells"));
  if (of_cells == nullptr) return;
  contents.fields.soil = read_terms(*of_cells, key("model/sources/infiltracells").path,
                                    file.is_well() ? cells_to_read(checked) : 0,
                                    cases::ids_of(contents.soils), "soil", findings);
}

}  // namespace tools::check
