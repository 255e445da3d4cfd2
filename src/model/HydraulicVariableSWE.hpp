// Conserved state of a cell: water and, in the model with sediments, the erodible layer.
#pragma once

#include <istream>

struct HydraulicVariableSWE {
  double h = 0.0;    ///< water depth, m
  double qx = 0.0;   ///< unit discharge along x, m2/s
  double qy = 0.0;   ///< unit discharge along y, m2/s
  double hs = 0.0;   ///< thickness of the sediment layer above the bed rock, m
  double qsx = 0.0;  ///< bed-load unit discharge along x, m2/s
  double qsy = 0.0;  ///< bed-load unit discharge along y, m2/s

  void set_values(double depth, double discharge_x, double discharge_y) {
    h = depth;
    qx = discharge_x;
    qy = discharge_y;
  }
  void set_values(double depth, double discharge_x, double discharge_y, double sediment,
                  double bed_load_x, double bed_load_y) {
    set_values(depth, discharge_x, discharge_y);
    hs = sediment;
    qsx = bed_load_x;
    qsy = bed_load_y;
  }
  /// Sets the discharges only, and stores them as given, in spite of its name.
  void set_values_speed(double discharge_x, double discharge_y) {
    qx = discharge_x;
    qy = discharge_y;
  }

  // Intended: arithmetic leaves qsx and qsy alone; only the transport law writes them.
  HydraulicVariableSWE& operator+=(const HydraulicVariableSWE& other) {
    h += other.h;
    qx += other.qx;
    qy += other.qy;
    hs += other.hs;
    return *this;
  }
  HydraulicVariableSWE& operator-=(const HydraulicVariableSWE& other) {
    h -= other.h;
    qx -= other.qx;
    qy -= other.qy;
    hs -= other.hs;
    return *this;
  }
  HydraulicVariableSWE& operator*=(double factor) {
    h *= factor;
    qx *= factor;
    qy *= factor;
    hs *= factor;
    return *this;
  }
};

/// Writes the water part: h, qx, qy, each followed by a tab.
template <class Stream>
Stream& operator<<(Stream& out, const HydraulicVariableSWE& state) {
  out << state.h << '\t' << state.qx << '\t' << state.qy << '\t';
  return out;
}

/// Reads h, qx, qy.
inline std::istream& operator>>(std::istream& in, HydraulicVariableSWE& state) {
  return in >> state.h >> state.qx >> state.qy;
}
