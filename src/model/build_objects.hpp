// Builds the objects of a model from a case.
#pragma once

#include <memory>
#include <vector>

#include "case/Case.hpp"
#include "model/PhysicalModel.hpp"
#include "sources/SourceTerm.hpp"

struct ModelObjects {
  std::vector<std::unique_ptr<SourceTerm>> rain;   ///< a term per hyetogram; cells share them
  std::vector<std::unique_ptr<SourceTerm>> soils;  ///< a term per soil
  std::unique_ptr<PhysicalModel> model;
};

/// The whole model at its initial state. Its objects read the start and the end of the run, the dry
/// depth and the parameters of the sediments from the globals, which must hold those of the case.
ModelObjects build_objects(const cases::Case& contents);
