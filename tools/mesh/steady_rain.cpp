#include "mesh/steady_rain.hpp"

#include <optional>

#include "mesh/units.hpp"

namespace mesh_import {

namespace {

std::optional<SteadyRain> parse(const std::string& request) {
  const std::size_t equals = request.find('=');
  const std::size_t begin = equals == std::string::npos ? 0 : equals + 1;
  const auto measured = parse_measured(request.substr(begin));
  if (!measured || measured->value < 0.0) return std::nullopt;
  const auto unit = parse_unit(measured->unit);
  if (!unit || unit->quantity != Quantity::rain) return std::nullopt;
  return SteadyRain{request.substr(0, begin), measured->value * unit->in_si};
}

}  // namespace

bool is_steady_rain(const std::string& request) { return parse(request).has_value(); }

SteadyRain steady_rain(const std::string& request) { return parse(request).value(); }

}  // namespace mesh_import
