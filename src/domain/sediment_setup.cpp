// Set-up of the sediments: their parameters in the log, and checks of what they can mean.
#include <algorithm>
#include <string>

#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

std::string value_of(const std::string& key, double value) {
  return "\"" + key + "\" is " + utils::number_text(value);
}

/// Without sediment in any cell a senseless parameter changes nothing: a warning will do.
void refuse_or_warn(bool has_sediment, const std::string& message) {
  if (has_sediment) utils::fatal("Error. " + message + "\n");
  utils::warn(message);
}

void check_parameters(const cases::SedimentParameters& sediment, bool has_sediment) {
  const double porosity = sediment.porosity;
  if (!(porosity >= 0.0 && porosity < 1.0)) {
    utils::fatal("Error. " + value_of("sediments porosity", porosity) +
                 ", expected a number from 0 to less than 1.\n");
  }
  if (!(sediment.d50 > 0.0)) {
    refuse_or_warn(has_sediment, value_of("sediments mean grain diameter", sediment.d50) +
                                     " m, expected a positive diameter.");
  }
  const double density = sediment.density;
  if (!(density > 1.0)) {
    refuse_or_warn(has_sediment, value_of("sediments density", density) +
                                     ", expected more than 1: it is relative to water.");
  }
  if (density > 20.0) {
    utils::warn(value_of("sediments density", density) +
                ": it is relative to water; was it given in kg/m3?");
  }
}

}  // namespace

void Domain::report_and_check_sediments() const {
  const cases::SedimentParameters& sediment = case_.sediment;
  // Intended: the units after density and friction coefficient are those that readers of the log
  // expect.
  Globals::spyFile << "Sediment transport parameters: \n"
                   << "  Sediments mean grain diameter: " << sediment.d50 << " m\t\n"
                   << "  Sediments density: " << sediment.density << " s\t\n"
                   << "  Sediments friction coefficient: " << sediment.manning << " s\t\n"
                   << "  Sediments porosity: " << sediment.porosity << '\n';

  const std::vector<double>& thickness = case_.fields.sediment;
  const bool has_sediment =
      std::any_of(thickness.begin(), thickness.end(), [](double hs) { return hs > 0.0; });
  check_parameters(sediment, has_sediment);
  if (has_sediment && case_.fields.manning.empty()) {
    utils::warn("the bed is mobile, but there is no friction file: no transport can occur.");
  }
}
