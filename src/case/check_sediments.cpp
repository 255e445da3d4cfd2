#include "case/check_sediments.hpp"

#include <algorithm>
#include <string>

#include "utils/number_text.hpp"

namespace cases {

namespace {

std::string value_of(const std::string& key, double value) {
  return "\"" + key + "\" is " + utils::number_text(value);
}

/// Without sediment in any cell a senseless parameter changes nothing: a warning will do.
void refuse_or_warn(bool has_sediment, const std::string& message, Diagnostics& diagnostics) {
  if (has_sediment) {
    diagnostics.error("Error. " + message + "\n");
  } else {
    diagnostics.warn(message);
  }
}

void check_parameters(const SedimentParameters& sediment, bool has_sediment,
                      Diagnostics& diagnostics) {
  const double porosity = sediment.porosity;
  if (!(porosity >= 0.0 && porosity < 1.0)) {
    diagnostics.error("Error. " + value_of("sediments porosity", porosity) +
                      ", expected a number from 0 to less than 1.\n");
  }
  if (!(sediment.d50 > 0.0)) {
    refuse_or_warn(has_sediment,
                   value_of("sediments mean grain diameter", sediment.d50) +
                       " m, expected a positive diameter.",
                   diagnostics);
  }
  const double density = sediment.density;
  if (!(density > 1.0)) {
    refuse_or_warn(
        has_sediment,
        value_of("sediments density", density) + ", expected more than 1: it is relative to water.",
        diagnostics);
  }
  if (density > 20.0) {
    diagnostics.warn(value_of("sediments density", density) +
                     ": it is relative to water; was it given in kg/m3?");
  }
}

}  // namespace

void log_sediments(std::ostream& log, const SedimentParameters& sediment) {
  // Intended: the units after density and friction coefficient are those that readers of the log
  // expect.
  log << "Sediment transport parameters: \n"
      << "  Sediments mean grain diameter: " << sediment.d50 << " m\t\n"
      << "  Sediments density: " << sediment.density << " s\t\n"
      << "  Sediments friction coefficient: " << sediment.manning << " s\t\n"
      << "  Sediments porosity: " << sediment.porosity << '\n';
}

bool has_sediment(const std::vector<double>& thickness) {
  return std::any_of(thickness.begin(), thickness.end(), [](double hs) { return hs > 0.0; });
}

void check_sediments(const SedimentParameters& sediment, bool has_sediment, bool has_friction,
                     Diagnostics& diagnostics) {
  check_parameters(sediment, has_sediment, diagnostics);
  if (has_sediment && !has_friction) {
    diagnostics.warn("the bed is mobile, but there is no friction file: no transport can occur.");
  }
}

}  // namespace cases
