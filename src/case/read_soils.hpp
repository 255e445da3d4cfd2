// Reads the soils of a case. `Source` gives the values of a file, as utils::TextScanner does.
#pragma once

#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

template <class Source>
GreenAmptParameters read_green_ampt(Source& file) {
  GreenAmptParameters soil{};
  soil.Ks = file.read_number("hydraulic conductivity Ks");
  soil.psi = file.read_number("suction head psi");
  soil.theta_i = file.read_number("initial moisture content theta_i");
  soil.theta_s = file.read_number("saturated moisture content theta_s");
  soil.L = file.read_number("layer depth L");
  soil.kr = file.read_number("recovery rate kr");
  return soil;
}

template <class Source>
HortonParameters read_horton(Source& file) {
  HortonParameters soil{};
  soil.f0 = file.read_number("initial capacity f0");
  soil.fc = file.read_number("final capacity fc");
  soil.k = file.read_number("decay coefficient k");
  soil.Fmax = file.read_number("largest infiltration Fmax");
  soil.kr = file.read_number("recovery rate kr");
  return soil;
}

/// `look_at(soil)` sees each as soon as it is read, `on_unknown(type)` is told of a soil that there
/// is no model for, and may go on.
template <class Source, class LookAt, class OnUnknown>
std::vector<Soil> read_soil_classes(Source& file, LookAt look_at, OnUnknown on_unknown) {
  const int count = file.read_count("number of soil classes", 2);
  std::vector<Soil> soils;
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("soil class", i, count);
    Soil& soil = soils.emplace_back();
    soil.id = file.read_integer("ID");
    const std::string type = file.read_word("type");
    if (type == "GreenAmpt") {
      soil.parameters = read_green_ampt(file);
    } else if (type == "Horton") {
      soil.parameters = read_horton(file);
    } else {
      on_unknown(type);
    }
    look_at(soil);
  }
  return soils;
}

/// Ends the run at what is malformed, and warns of what hardly was meant.
std::vector<Soil> read_soils(const std::string& name, Diagnostics& diagnostics);

}  // namespace cases
