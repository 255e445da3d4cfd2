#include "mesh/earlier_results.hpp"

#include <algorithm>
#include <set>

#include "case/planned_files.hpp"
#include "case/write_case.hpp"
#include "support/export_names.hpp"
#include "utils/files.hpp"

namespace mesh_import {

namespace {

namespace fs = std::filesystem;

/// The results that runs of the case write, those of a run with a report among them; the report
/// itself lies where its user wants it.
std::vector<fs::path> planned_results(const cases::PlannedFiles& planned) {
  std::vector<fs::path> names;
  for (const cases::PlannedResult& result : planned.results) {
    if (result.what == "the report") continue;
    names.emplace_back(result.name);
    if (result.is_written_whole) names.emplace_back(result.name + ".part");
  }
  return names;
}

void add_exports(const fs::path& folder, std::vector<fs::path>& names) {
  const fs::path exports = folder / tools::export_folder;
  std::error_code ignored;
  for (const fs::path& place : {exports, exports / "pictures"}) {
    for (fs::directory_iterator entry(place, ignored), end; entry != end;
         entry.increment(ignored)) {
      const fs::path name = entry->path();
      if (tools::is_export_name(name.lexically_relative(exports))) names.push_back(name);
    }
  }
}

bool is_inside(const fs::path& name, const fs::path& folder) {
  std::error_code ignored;
  const fs::path place = fs::canonical(fs::absolute(name, ignored).parent_path(), ignored);
  return *place.lexically_relative(fs::canonical(folder, ignored)).begin() != "..";
}

}  // namespace

std::vector<fs::path> results_of_case(const std::string& folder) {
  const std::string data_file = (fs::path(folder) / cases::data_file_name).string();
  std::error_code ignored;
  if (!fs::is_regular_file(data_file, ignored)) return {};
  const cases::PlannedFiles planned = cases::plan_files(data_file, "report", folder);
  std::set<std::string> inputs;
  for (const std::string& name : planned.inputs) inputs.insert(utils::identity_of_file(name));

  std::vector<fs::path> names = planned_results(planned);
  add_exports(folder, names);
  std::erase_if(names, [&](const fs::path& name) {
    return !fs::is_regular_file(fs::symlink_status(name, ignored)) || !is_inside(name, folder) ||
           utils::is_input_file(name.string()) ||
           inputs.count(utils::identity_of_file(name.string())) > 0;
  });
  return names;
}

}  // namespace mesh_import
