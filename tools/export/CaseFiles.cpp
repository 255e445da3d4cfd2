#include "export/CaseFiles.hpp"

#include <exception>
#include <filesystem>

#include "case/DataFileReader.hpp"
#include "case/planned_files.hpp"
#include "support/Error.hpp"
#include "utils/files.hpp"

namespace exports {

namespace {

namespace fs = std::filesystem;

std::string data_file_of(const std::string& given) {
  std::error_code ignored;
  if (!fs::exists(given, ignored)) {
    throw tools::Error("There is no case " + given + ": expected its folder or its data file.");
  }
  return fs::is_directory(given, ignored) ? (fs::path(given) / "data.json").string() : given;
}

void read(CaseFiles& files, const utils::DataFileReader& data) {
  const auto path = [&](const std::string& name) {
    return (fs::path(files.folder) / name).string();
  };
  files.title = data.get_simulation_name();
  files.has_sediment = data.is_sediments();
  files.has_infiltration = data.is_infiltration() || data.is_initial_infiltration();
  files.dry_depth = data.get_zero_depth_value();
  files.epsg = data.get_epsg();
  files.epoch = data.get_epoch();
  files.nodes = path(data.get_nodes_file());
  files.cells = path(data.get_cells_file());
  files.edges = path(data.get_edges_file());
  files.origin = data.get_mesh_origin();
  if (data.is_imposed_fixed_bed_level()) files.fixed_bed = path(data.get_fixed_bed_level_file());
  if (files.has_sediment) files.sediment_thickness = path(data.get_sediments_level_file());
  if (data.is_pictures()) files.snapshot_times = path(data.get_pictures_file());
  if (data.is_gauges()) files.gauges = path(data.get_gauges_file());
  if (data.is_discharge_check()) files.sections = path(data.get_discharge_file());
  files.output_prefix = data.get_output_folder_path();
  if (data.is_maxima()) files.maxima = files.result(data.get_maxima_file());
}

/// No export takes the place of a file of the case, whether it reads that file or not.
void protect_case(const CaseFiles& files) {
  const cases::PlannedFiles planned = cases::plan_files(files.data_file, "", files.folder);
  for (const std::string& name : planned.inputs) utils::note_input_file(name);
  for (const cases::PlannedResult& result : planned.results) utils::note_input_file(result.name);
}

}  // namespace

CaseFiles::CaseFiles(const std::string& folder_or_data_file)
    : data_file(data_file_of(folder_or_data_file)) {
  folder = fs::path(data_file).parent_path().string();
  protect_case(*this);
  try {
    read(*this, utils::DataFileReader(data_file));
  } catch (const tools::Error&) {
    throw;
  } catch (const std::exception& error) {
    throw tools::Error("Error in file " + data_file + ": " + error.what());
  }
}

std::string CaseFiles::result(const std::string& name) const {
  return (fs::path(folder) / (output_prefix + name)).string();
}

std::string CaseFiles::export_path(const std::string& name) const {
  return (fs::path(folder) / "export" / name).string();
}

}  // namespace exports
