#include "mesh/check/text_table.hpp"

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace tools::check {

void write_table(std::ostream& out, const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()), 0);
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      out << "  " << (i == 0 ? std::left : std::right) << std::setw(static_cast<int>(widths[i]))
          << row[i];
    }
    out << "\n";
  }
}

}  // namespace tools::check
