// Set-up of a run: data file, model, cell fields, and the summary in the log.
#include <filesystem>
#include <map>

#include "case/DataFileReader.hpp"
#include "case/initial_state.hpp"
#include "case/read_fields.hpp"
#include "case/read_requests.hpp"
#include "domain/Domain.hpp"
#include "fields/make_flow.hpp"
#include "globals/Globals.hpp"
#include "report/RunReport.hpp"
#include "utils/TextScanner.hpp"
#include "utils/files.hpp"
#include "utils/memory.hpp"
#include "utils/stop.hpp"

namespace {

/// Codes of the flux schemes; a name that is not here has code 0.
const std::map<std::string, int> flux_schemes = {{"LHLLC", 1}, {"Roe", 2}};

}  // namespace

Domain::Domain(const std::string& dataFile, Watchers watchers) : watchers_(watchers) {
  utils::return_large_blocks();
  read_data_file(dataFile);
  std::ostream& log = Globals::spyFile;

  log << "Name of the simulation:\n";
  utils::write_and_display(log, simulation_name);
  utils::write_and_display(log, "\n");
  utils::print_delimitator(log);

  log << "Generic parameters of the run: \n"
      << "  Start time: " << Globals_Params::tStart << " s\t\n"
      << "  End time: " << Globals_Params::tEnd << " s\t\n"
      << "  Courant-Friedrichs-Lewy (CFL) number: " << case_.cfl << "\n";
  utils::print_delimitator(log);

  report_model();
  read_mesh();
  read_cell_fields();
  read_source_terms();
  set_outputs();
  set_other_parameters();
  warn_of_implausible_input();
}

void Domain::read_data_file(const std::string& dataFile) {
  const utils::DataFileReader reader(dataFile);
  const auto report_keys = [&] {
    if (watchers_.report != nullptr) watchers_.report->take_keys(reader);
  };
  try {
    take_values(reader);
  } catch (...) {
    report_keys();
    throw;
  }
  report_keys();
}

void Domain::take_values(const utils::DataFileReader& reader) {
  simulation_name = reader.get_simulation_name();
  case_.t_start = Globals_Params::tStart = reader.get_start_time();
  case_.t_end = Globals_Params::tEnd = reader.get_end_time();
  case_.cfl = reader.get_CFL();
  nodes_file = reader.get_nodes_file();
  cells_file = reader.get_cells_file();
  edges_file = reader.get_edges_file();
  model_name = reader.get_model_name();
  case_.has_sediments = reader.is_sediments();
  case_.zero_depth = Constants::ZERO_DEPTH = reader.get_zero_depth_value();
  const auto scheme = flux_schemes.find(reader.get_flux_scheme_name());
  if (scheme != flux_schemes.end()) flux_scheme = scheme->second;

  initial_conditions_file = reader.get_initial_hydrodynamic_conditions_file();
  is_fixed_bed_level = reader.is_imposed_fixed_bed_level();
  if (is_fixed_bed_level) fixed_bed_level_file = reader.get_fixed_bed_level_file();
  is_friction = reader.is_imposed_friction();
  if (is_friction) friction_file = reader.get_friction_file();

  is_rainfall = reader.is_rainfall();
  if (is_rainfall) {
    rainfall_file = reader.get_rainfall_file();
    hyetocells_file = reader.get_hyetocells_file();
  }
  is_infiltration = reader.is_infiltration();
  if (is_infiltration) {
    infiltration_file = reader.get_infiltration_file();
    infiltracells_file = reader.get_infiltracells_file();
  }
  is_initial_infiltration = reader.is_initial_infiltration();
  if (is_initial_infiltration) initial_infiltration_file = reader.get_initial_infiltration_file();
  case_.has_infiltration = is_infiltration || is_initial_infiltration;

  if (reader.is_sediments()) {
    is_sediments_level = reader.is_imposed_sediments_level();
    if (is_sediments_level) sediments_level_file = reader.get_sediments_level_file();
    if (reader.is_sediments_parameters()) {
      cases::SedimentParameters& sediment = case_.sediment;
      sediment.d50 = Globals_Sed::g_d50 = reader.get_sediments_mean_grain();
      sediment.density = Globals_Sed::g_sedimentsDensity = reader.get_sediments_density();
      sediment.manning = Globals_Sed::g_sedimentsManning = reader.get_sediments_friction();
      sediment.porosity = Globals_Sed::g_sedimentsPorosity = reader.get_sediments_porosity();
    }
  }

  Globals::g_outputPath = reader.get_output_folder_path();
  dt_enveloppe = reader.get_dt_enveloppe();
  is_pictures = reader.is_pictures();
  if (is_pictures) pictures_file = reader.get_pictures_file();
  is_gauges = reader.is_gauges();
  if (is_gauges) gauges_file = reader.get_gauges_file();
  is_discharges = reader.is_discharge_check();
  if (is_discharges) discharge_file = reader.get_discharge_file();
}

void Domain::report_model() const {
  std::ostream& log = Globals::spyFile;
  log << "Parameters of the computational method: \n";
  const bool is_hydrodynamic = model_name == "Quillmere";
  if (is_hydrodynamic) {
    log << "  Shallow-water equations - hydrodynamic\n";
  } else if (has_sediments()) {
    log << "  Shallow-water/Exner equations - with sediments\n";
  } else {
    // Intended: the text announces a fall-back, but no model is built and the run ends.
    utils::write_and_display(log, "\n    Physical model code " + model_name +
                                      " does not exist!\n    Fall-back to SWE.\n");
  }
  utils::print_delimitator(log);
  if (!is_hydrodynamic && !has_sediments()) utils::fatal("Physical model not recognized\n");
}

void Domain::read_cell_fields() {
  std::ostream& log = Globals::spyFile;
  log << "Setting bed level, friction, initial conditions and model parameters\n";
  const cases::Number n_cells = case_.mesh.n_cells();
  if (is_fixed_bed_level) {
    utils::TextScanner file(fixed_bed_level_file);
    cases::read_bed(file, n_cells, case_.fields);
    log << "  Fixed bed level (zbr) set from: " << fixed_bed_level_file << '\n';
  }
  if (has_sediments() && is_sediments_level) {
    utils::TextScanner file(sediments_level_file);
    cases::read_sediment(file, n_cells, case_.fields);
    log << "  Sediment level set from: " << sediments_level_file << '\n';
  }
  if (is_friction) {
    utils::TextScanner file(friction_file);
    cases::read_manning(file, n_cells, case_.fields);
    log << "  Friction parameters set from: " << friction_file << '\n';
  }
  utils::TextScanner file(initial_conditions_file);
  cases::read_initial_state(file, n_cells, case_.fields);
  log << "  Hydrodynamic initial conditions read from: " << initial_conditions_file << '\n';
  if (has_sediments()) report_and_check_sediments();
  utils::print_delimitator(log);
}

void Domain::set_outputs() {
  std::ostream& log = Globals::spyFile;
  const std::filesystem::path folder = std::filesystem::path(Globals::g_outputPath).parent_path();
  std::error_code ignored;
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    utils::warn("the output folder " + folder.string() + " does not exist: results will be lost.");
  }

  log << "Output parameters:\n";
  next_enveloppe_time = Globals_Params::tStart;
  envelope_file_ = Globals::g_outputPath + "enveloppe.txt";
  log << "  Maximum values will be recorded every: " << dt_enveloppe << " s\n";
  log << "  Gauges: ";
  if (is_gauges) {
    log << "positions read in " << gauges_file << '\n';
    utils::TextScanner file(gauges_file);
    gauge = std::make_unique<Gauge>(
        cases::read_gauges(file), Globals::g_outputPath,
        [this](double x, double y) { return CellWithPoint(x, y); }, Globals_Params::tStart);
    locator.reset();
  } else {
    log << "No gauges\n";
  }
  log << "  Pictures of the hydraulic state: ";
  if (is_pictures) {
    log << "times read in " << pictures_file << '\n';
    utils::TextScanner file(pictures_file);
    picture = std::make_unique<CPicture>(cases::read_snapshots(file), Globals::g_outputPath, case_);
  } else {
    log << "No pictures\n";
  }
  log << "  Section where to measure the discharge: ";
  if (is_discharges) {
    log << "sections read in " << discharge_file << '\n';
    utils::TextScanner file(discharge_file);
    monitor_section = std::make_unique<CMonitorSection>(
        cases::read_sections(file, case_.mesh.n_edges()), case_.mesh, Globals_Params::tStart);
  } else {
    log << "No section to monitor\n";
  }
  utils::print_delimitator(log);
}

void Domain::set_other_parameters() {
  std::ostream& log = Globals::spyFile;
  log << "Other parameters:\n";
  flow_ = fields::make_flow(case_, diagnostics_, fields::path_of_environment());
  const fields::FlowScales scales = flow_->scales();
  log << "  Largest initial water depth (h0): " << scales.h0 << '\n'
      << "  Minimal characteristic length in a cell (min dx): " << scales.char_length_min << '\n'
      << "  ZERO depth: " << case_.zero_depth << '\n';
  utils::print_delimitator(log);
  umax_buffer.resize(cases::at(case_.mesh.n_cells()));
}

cases::Number Domain::CellWithPoint(double x, double y) const {
  if (!locator) locator = std::make_unique<PointLocator>(case_.mesh);
  return locator->cell_at(x, y);
}
