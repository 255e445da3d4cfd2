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

/// Reads the files in their order, and says so in the log.
class CaseReader {
 public:
  CaseReader(ReadCase& read, const Listeners& listeners, Diagnostics& diagnostics)
      : case_(read.contents),
        data_(read.data),
        area_loss_(read.area_loss),
        listeners_(listeners),
        log_(listeners.log),
        diagnostics_(diagnostics) {}

  void read(const std::string& data_file) {
    take_values(data_file);
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
  AreaLoss& area_loss_;
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
  if (!is_hydrodynamic && !case_.has_sediments) utils::fatal("Physical model not recognized\n");
}

void CaseReader::read_mesh() {
  log_ << "Reading of input files to set-up the model geometry:\n";
  log_ << "  Reading nodes in: " << data_.nodes << '\n';
  read_nodes(data_.nodes, case_.mesh);
  log_ << "    Number of nodes created: " << case_.mesh.n_nodes() << '\n';

  log_ << "  Reading cells in: " << data_.cells << '\n';
  read_cells(data_.cells, case_.mesh, area_loss_);
  // Intended: three leading blanks here and below, four above.
  log_ << "   Number of cells created: " << case_.mesh.n_cells() << '\n';

  log_ << "  Reading interfaces in: " << data_.edges << '\n';
  read_edges(data_.edges, data_.flux_scheme, case_, diagnostics_);
  log_ << "   Number of interfaces created: " << case_.mesh.n_edges() << '\n';
  utils::print_delimitator(log_);
}

void CaseReader::read_fields() {
  log_ << "Setting bed level, friction, initial conditions and model parameters\n";
  read_cell_files("model/conditions");
  if (case_.has_sediments) {
    log_sediments(log_, case_.sediment);
    check_sediments(case_, diagnostics_);
  }
  utils::print_delimitator(log_);
}

void CaseReader::read_cell_files(std::string_view section) {
  for (const CellFile& described : cell_files) {
    const std::string* const name = data_.cell_files.find(described.key);
    if (described.key.section() != section || name == nullptr) continue;
    utils::TextScanner file(*name);
    read_cell_file(described, file, case_.mesh.n_cells(), case_.fields);
    log_ << "  " << described.log << *name << '\n';
  }
}

void CaseReader::read_sources() {
  const Number n_cells = case_.mesh.n_cells();
  const auto terms_of_cells = [&](const std::string& name, const std::vector<int>& ids) {
    utils::TextScanner file(name);
    return read_terms(file, n_cells, ids, end_at_unknown_term);
  };
  log_ << "Setting source terms\n";
  if (data_.rainfall) {
    case_.rain = read_rain(*data_.rainfall, diagnostics_);
    log_ << "  Hyetograms set from: " << *data_.rainfall << '\n';
    case_.fields.rain = terms_of_cells(*data_.hyetocells, ids_of(case_.rain));
    log_ << "  Hyetocells set from: " << *data_.hyetocells << '\n';
  }
  if (data_.infiltration) {
    case_.soils = read_soils(*data_.infiltration, diagnostics_);
    log_ << "  Infiltration set from: " << *data_.infiltration << '\n';
    case_.fields.soil = terms_of_cells(*data_.infiltracells, ids_of(case_.soils));
    log_ << "  Infiltracells set from: " << *data_.infiltracells << '\n';
  }
  read_cell_files("model/sources");
  utils::print_delimitator(log_);
}

}  // namespace

ReadCase read_case(const std::string& data_file, const Listeners& listeners,
                   Diagnostics& diagnostics) {
  ReadCase read;
  CaseReader(read, listeners, diagnostics).read(data_file);
  return read;
}

}  // namespace cases
