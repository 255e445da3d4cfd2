// A table of texts in aligned columns.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tools::check {

/// Writes rows of equal length, the first one the titles; the first column is aligned to the left,
/// the others to the right.
void write_table(std::ostream& out, const std::vector<std::vector<std::string>>& rows);

}  // namespace tools::check
