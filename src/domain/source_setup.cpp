// Set-up of rain and infiltration.
#include "case/read_fields.hpp"
#include "case/read_rain.hpp"
#include "case/read_soils.hpp"
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "utils/TextScanner.hpp"
#include "utils/files.hpp"

void Domain::read_source_terms() {
  std::ostream& log = Globals::spyFile;
  const cases::Number n_cells = case_.mesh.n_cells();
  cases::CellFields& fields = case_.fields;
  const auto terms_of_cells = [&](const std::string& name, const std::vector<int>& ids) {
    utils::TextScanner file(name);
    return cases::read_terms(file, n_cells, ids, cases::end_at_unknown_term);
  };
  log << "Setting source terms\n";
  if (is_rainfall) {
    case_.rain = cases::read_rain(rainfall_file, diagnostics_);
    log << "  Hyetograms set from: " << rainfall_file << '\n';
    fields.rain = terms_of_cells(hyetocells_file, cases::ids_of(case_.rain));
    log << "  Hyetocells set from: " << hyetocells_file << '\n';
  }
  if (is_infiltration) {
    case_.soils = cases::read_soils(infiltration_file, diagnostics_);
    log << "  Infiltration set from: " << infiltration_file << '\n';
    fields.soil = terms_of_cells(infiltracells_file, cases::ids_of(case_.soils));
    log << "  Infiltracells set from: " << infiltracells_file << '\n';
  }
  if (is_initial_infiltration) {
    utils::TextScanner file(initial_infiltration_file);
    cases::read_infiltrated(file, n_cells, fields);
    log << "  Initial infiltration set from: " << initial_infiltration_file << '\n';
  }
  utils::print_delimitator(log);
}
