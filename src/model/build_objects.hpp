// Builds the objects of a model from a case.
#pragma once

#include "case/Case.hpp"
#include "model/PhysicalModel.hpp"

/// Nodes, cells and interfaces. The model must be empty.
void build_mesh(PhysicalModel& model, const cases::Case& contents);
