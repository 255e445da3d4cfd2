// Gives the cells of a model what the files with a record per cell hold. All columns have an entry
// per cell; bed and sediment come before the initial state, whose depth is counted from them.
#pragma once

#include <vector>

#include "case/Case.hpp"
#include "model/PhysicalModel.hpp"

void set_bed(PhysicalModel& model, const std::vector<double>& level);
void set_sediment(PhysicalModel& model, const std::vector<double>& thickness);
/// Every cell gets its own friction term.
void set_manning(PhysicalModel& model, const std::vector<double>& manning);
void set_initial_state(PhysicalModel& model, const cases::CellFields& fields);
/// Attaches the term of a cell by its number, unless that is -1.
void attach_terms(PhysicalModel& model, const std::vector<int>& numbers,
                  const std::vector<SourceTerm*>& terms);
void set_infiltrated(PhysicalModel& model, const std::vector<double>& depth);
