#include "ranks/cut_along_curve.hpp"

#include "ranks/Curve.hpp"
#include "ranks/cuts_by_weight.hpp"

namespace ranks {

std::vector<std::vector<cases::Number>> cut_along_curve(const cases::Mesh& mesh, int ranks) {
  const Curve curve(mesh);
  const std::vector<double> alike(cases::at(curve.patches()), 1.0);
  return curve.runs(cuts_of(alike, ranks));
}

}  // namespace ranks
