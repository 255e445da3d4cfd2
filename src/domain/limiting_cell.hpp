// The cell that sets the step of a flow.
#pragma once

#include "case/Case.hpp"
#include "fields/Flow.hpp"

/// A cell whose state is not finite, else the one with the smallest step, or the smallest cell
/// where dry cells set it; -1 without cells.
cases::Number limiting_cell(const fields::Flow& flow, const cases::Case& contents);
