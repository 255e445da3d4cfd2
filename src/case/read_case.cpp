#include "case/read_case.hpp"

#include <string_view>

#include "case/check_sediments.hpp"
#include "case/read_data_file.hpp"
#include "case/read_fields.hpp"
#include "case/read_mesh.hpp"
#include "case/read_rain.hpp"
#include "case/read_soils.hpp"
#include "utils/TextScanner.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

namespace cases {

namespace {

/// Reads files from their begin to their end.
class WholeFiles final : public CaseFiles {
 public:
  WholeFiles(ReadCase& read, Diagnostics& diagnostics)
      : case_(read.contents), area_loss_(read.area_loss), diagnostics_(diagnostics) {}

  void together(const std::function<void()>& step) override { step(); }

  Number read_nodes(const std::string& name) override {
    cases::read_nodes(name, case_.mesh);
    return case_.mesh.n_nodes();
  }
  Number read_cells(const std::string& name) override {
    cases::read_cells(name, case_.mesh, area_loss_);
    return case_.mesh.n_cells();
  }
  Number read_edges(const std::string& name, int scheme) override {
    cases::read_edges(name, scheme, case_, diagnostics_);
    return case_.mesh.n_edges();
  }

  void read_cell_file(const CellFile& described, const std::string& name) override {
    utils::TextScanner file(name);
    cases::read_cell_file(described, file, case_.mesh.n_cells(), case_.fields);
  }
  void read_terms(const std::string& name, const std::vector<int>& ids,
                  std::vector<int> CellFields::*column) override {
    utils::TextScanner file(name);
    case_.fields.*column = cases::read_terms(file, case_.mesh.n_cells(), ids, end_at_unknown_term);
  }

  bool has_sediment() override { return cases::has_sediment(case_.fields.sediment); }

 private:
  Case& case_;
  AreaLoss& area_loss_;
  Diagnostics& diagnostics_;
};

/// Reads the files in their order, and says so in the log.
class CaseReader {
 public:
  CaseReader(CaseFiles& files, const Listeners& listeners, Diagnostics& diagnostics, Case& contents,
             DataFile& data)
      : case_(contents),
        data_(data),
        files_(files),
        listeners_(listeners),
        log_(listeners.log),
        diagnostics_(diagnostics) {}

  void read(const std::string& data_file) {
    files_.together([&] { take_values(data_file); });
    log_parameters();
    log_model();
    read_mesh();
    read_fields();
    read_sources();
  }

 private:
  void take_values(const std::string& data_file);
  void log_parameters();
  void log_model();
  void read_mesh();
  void read_fields();
  void read_sources();
  /// Those with numbers for every cell that keys of a section name.
  void read_cell_files(std::string_view section);

  Case& case_;
  DataFile& data_;
  CaseFiles& files_;
  const Listeners& listeners_;
  std::ostream& log_;
  Diagnostics& diagnostics_;
};

void CaseReader::take_values(const std::string& data_file) {
  const utils::DataFileReader reader(data_file);
  const auto tell_keys = [&] {
    if (listeners_.on_keys) listeners_.on_keys(reader.key_uses(), case_);
  };
  try {
    read_data_file(reader, data_, case_);
  } catch (...) {
    tell_keys();
    throw;
  }
  tell_keys();
}

void CaseReader::log_parameters() {
  log_ << "Name of the simulation:\n";
  utils::write_and_display(log_, listeners_.console, data_.simulation_name);
  utils::write_and_display(log_, listeners_.console, "\n");
  utils::print_delimitator(log_);

  log_ << "Generic parameters of the run: \n"
       << "  Start time: " << case_.t_start << " s\t\n"
       << "  End time: " << case_.t_end << " s\t\n"
       << "  Courant-Friedrichs-Lewy (CFL) number: " << case_.cfl << "\n";
  utils::print_delimitator(log_);
}

void CaseReader::log_model() {
  log_ << "Parameters of the computational method: \n";
  const bool is_hydrodynamic = data_.model_name == water_model;
  if (is_hydrodynamic) {
    log_ << "  Shallow-water equations - hydrodynamic\n";
  } else if (case_.has_sediments) {
    log_ << "  Shallow-water/Exner equations - with sediments\n";
  } else {
    // Intended: the text announces a fall-back, but no model is built and the run ends.
    utils::write_and_display(log_, listeners_.console,
                             "\n    Physical model code " + data_.model_name +
                                 " does not exist!\n    Fall-back to SWE.\n");
  }
  if (is_hll(case_.scheme)) log_ << "  Flux scheme: " << kind_of(case_.scheme).name << '\n';
  utils::print_delimitator(log_);
  files_.together([&] {
    if (!is_hydrodynamic && !case_.has_sediments) utils::fatal("Physical model not recognized\n");
  });
}

void CaseReader::read_mesh() {
  log_ << "Reading of input files to set-up the model geometry:\n";
  log_ << "  Reading nodes in: " << data_.nodes << '\n';
  const Number nodes = files_.read_nodes(data_.nodes);
  log_ << "    Number of nodes created: " << nodes << '\n';

  log_ << "  Reading cells in: " << data_.cells << '\n';
  const Number cells = files_.read_cells(data_.cells);
  // Intended: three leading blanks here and below, four above.
  log_ << "   Number of cells created: " << cells << '\n';

  log_ << "  Reading interfaces in: " << data_.edges << '\n';
  const Number edges = files_.read_edges(data_.edges, data_.flux_scheme);
  log_ << "   Number of interfaces created: " << edges << '\n';
  utils::print_delimitator(log_);
}

void CaseReader::read_fields() {
  log_ << "Setting bed level, friction, initial conditions and model parameters\n";
  read_cell_files("model/conditions");
  if (case_.has_sediments) {
    log_sediments(log_, case_.sediment);
    const bool has_sediment = files_.has_sediment();
    const bool has_friction = data_.cell_files.find(key("model/conditions/friction")) != nullptr;
    files_.together(
        [&] { check_sediments(case_.sediment, has_sediment, has_friction, diagnostics_); });
  }
  utils::print_delimitator(log_);
}

void CaseReader::read_cell_files(std::string_view section) {
  for (const CellFile& described : cell_files) {
    const std::string* const name = data_.cell_files.find(described.key);
    if (described.key.section() != section || name == nullptr) continue;
    files_.read_cell_file(described, *name);
    log_ << "  " << described.log << *name << '\n';
  }
}

void CaseReader::read_sources() {
  log_ << "Setting source terms\n";
  if (data_.rainfall) {
    files_.together([&] { case_.rain = read_rain(*data_.rainfall, diagnostics_); });
    log_ << "  Hyetograms set from: " << *data_.rainfall << '\n';
    files_.read_terms(*data_.hyetocells, ids_of(case_.rain), &CellFields::rain);
    log_ << "  Hyetocells set from: " << *data_.hyetocells << '\n';
  }
  if (data_.infiltration) {
    files_.together([&] { case_.soils = read_soils(*data_.infiltration, diagnostics_); });
    log_ << "  Infiltration set from: " << *data_.infiltration << '\n';
    files_.read_terms(*data_.infiltracells, ids_of(case_.soils), &CellFields::soil);
    log_ << "  Infiltracells set from: " << *data_.infiltracells << '\n';
  }
  read_cell_files("model/sources");
  utils::print_delimitator(log_);
}

}  // namespace

void read_case(const std::string& data_file, CaseFiles& files, const Listeners& listeners,
               Diagnostics& diagnostics, Case& contents, DataFile& data) {
  CaseReader(files, listeners, diagnostics, contents, data).read(data_file);
}

ReadCase read_case(const std::string& data_file, const Listeners& listeners,
                   Diagnostics& diagnostics) {
  ReadCase read;
  WholeFiles files(read, diagnostics);
  read_case(data_file, files, listeners, diagnostics, read.contents, read.data);
  return read;
}

}  // namespace cases
