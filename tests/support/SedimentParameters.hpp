// Sets the grains and the porosity of the bed, and puts them back at the end of a test.
#pragma once

#include "globals/Globals.hpp"

namespace support {

class SedimentParameters {
 public:
  /// Diameter (m), density relative to water, porosity.
  SedimentParameters(double d50, double density, double porosity) {
    Globals_Sed::g_d50 = d50;
    Globals_Sed::g_sedimentsDensity = density;
    Globals_Sed::g_sedimentsPorosity = porosity;
  }
  ~SedimentParameters() {
    Globals_Sed::g_d50 = 0.0;
    Globals_Sed::g_sedimentsDensity = 0.0;
    Globals_Sed::g_sedimentsManning = 0.0;
    Globals_Sed::g_sedimentsPorosity = 0.0;
  }
  SedimentParameters(const SedimentParameters&) = delete;
  SedimentParameters& operator=(const SedimentParameters&) = delete;
};

}  // namespace support
