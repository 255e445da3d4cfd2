// A case in plain arrays: all that a run is told about the flow, in the order of its files. Columns
// that a case does not have are empty.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "case/Mesh.hpp"
#include "case/schemes.hpp"
#include "physics/infiltration.hpp"
#include "physics/rain.hpp"

namespace cases {

/// A boundary value sampled in time.
struct Series {
  std::string file;
  std::vector<double> times;   ///< s, increasing
  std::vector<double> values;  ///< m2/s or m

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.file, self.times, self.values);
  }
};

/// Rain on the cells that name it.
struct Hyetogram {
  int id;
  int step;                         ///< length of a burst, s
  std::vector<double> times;        ///< starts of its intervals, s
  std::vector<double> intensities;  ///< m/s

  /// As the formulas take it; it points into this one.
  physics::Hyetogram intervals() const {
    return {times.data(), intensities.data(), static_cast<int>(times.size()),
            static_cast<double>(step)};
  }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.id, self.step, self.times, self.intensities);
  }
};

/// Parameters of soils, in the order of their file.
struct GreenAmptParameters {
  double Ks, psi, theta_i, theta_s, L, kr;

  /// As the formulas take it.
  physics::GreenAmptSoil soil() const {
    return physics::green_ampt_soil(Ks, psi, theta_i, theta_s, L, kr);
  }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.Ks, self.psi, self.theta_i, self.theta_s, self.L, self.kr);
  }
};
struct HortonParameters {
  double f0, fc, k, Fmax, kr;

  /// As the formulas take it.
  physics::HortonSoil soil() const { return {f0, fc, k, Fmax, kr}; }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.f0, self.fc, self.k, self.Fmax, self.kr);
  }
};
struct Soil {
  int id;
  std::variant<GreenAmptParameters, HortonParameters> parameters;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.id, self.parameters);
  }
};

/// Fields of the cells.
struct CellFields {
  std::vector<double> bed;            ///< level of the bed, m; empty: mean of the vertices
  std::vector<double> sediment;       ///< thickness on the bed, m; empty: none
  std::vector<double> manning;        ///< s/m^(1/3); empty: no friction
  std::vector<double> level, qx, qy;  ///< initial free surface (m) and unit discharges (m2/s)
  std::vector<int> rain;              ///< index into Case::rain, -1: none; empty: no rain
  std::vector<int> soil;              ///< index into Case::soils, -1: none; empty: no soil
  std::vector<double> infiltrated;    ///< at the start, m; empty: nothing

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.bed, self.sediment, self.manning, self.level, self.qx, self.qy, self.rain, self.soil,
          self.infiltrated);
  }
};

/// What the bed of the model with sediments is made of.
struct SedimentParameters {
  double d50 = 0.0;      ///< mean grain diameter, m
  double density = 0.0;  ///< relative to water
  double manning = 0.0;  ///< s/m^(1/3); reported, not used
  double porosity = 0.0;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.d50, self.density, self.manning, self.porosity);
  }
};

/// Points at which the flow is recorded.
struct GaugeRequest {
  std::string result;  ///< file, in the folder of the results
  double interval;     ///< s
  std::vector<physics::PlanPoint> points;
};

/// Lines of edges through which the discharge is recorded.
struct SectionRequest {
  std::string result;  ///< file, in the working directory
  double interval;     ///< s
  std::vector<std::vector<Number>> sections;
};

/// The maxima of the flow in every cell.
struct MaximaRequest {
  std::string result;    ///< file, in the folder of the results
  double arrival_depth;  ///< deeper cells are under water, m
};

/// Times at which the whole flow is written, in the order of their file.
struct SnapshotRequest {
  std::vector<double> times;  ///< s
};

struct Case {
  bool has_sediments = false;  ///< the model with an erodible bed
  Scheme scheme = Scheme::lhllc;
  double t_start = 0.0, t_end = 0.0;  ///< s
  double cfl = 0.0;                   ///< Courant number
  double zero_depth = 0.0;            ///< water is strictly deeper, m
  SedimentParameters sediment;
  Mesh mesh;
  CellFields fields;
  std::vector<Series> series;
  std::vector<Hyetogram> rain;
  std::vector<Soil> soils;
  bool has_infiltration = false;  ///< soils, or depths infiltrated before

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.has_sediments, self.scheme, self.t_start, self.t_end, self.cfl, self.zero_depth,
          self.sediment, self.mesh, self.fields, self.series, self.rain, self.soils,
          self.has_infiltration);
  }
};

}  // namespace cases
