// Warnings before the first step about what a run accepts and what hardly was meant.
#pragma once

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "case/DataFile.hpp"
#include "case/Diagnostics.hpp"
#include "case/Part.hpp"
#include "case/plausibility.hpp"

namespace cases {

/// What hardly was meant in the cells of a case and at their boundaries; of parts of it, added up,
/// the same.
struct ImplausibleFields {
  plausibility::Outliers friction = {}, infiltration_below_zero = {}, deep_infiltration = {};
  /// Edges that let water out of dry cells; the largest discharge (m2/s) over the first of them,
  /// and the depth in its cell, m.
  long outflows = 0;
  Number edge = -1;
  double discharge = 0.0, depth = 0.0;

  void add(const ImplausibleFields& other);

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.friction, self.infiltration_below_zero, self.deep_infiltration, self.outflows,
          self.edge, self.discharge, self.depth);
  }
};

ImplausibleFields implausible_fields(const Case& contents);
/// In its own cells and at their boundaries, by the numbers of the whole case.
ImplausibleFields implausible_fields(const Part& part);

/// Times and parameters.
void warn_of_implausible_parameters(const Case& contents, Diagnostics& diagnostics);
/// Fields of the cells, boundaries, and areas that rounding has falsified. `contents` gives the
/// parameters.
void warn_of_implausible_fields(const ImplausibleFields& found, const Case& contents,
                                const DataFile& data, const AreaLoss& area_loss,
                                Diagnostics& diagnostics);

}  // namespace cases
