#include "export/SnapshotReader.hpp"

#include <array>
#include <cmath>
#include <string>

#include "export/TableReader.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

/// Columns in the order of the file, after x and y; null is a column that is not kept.
using Columns = std::vector<std::vector<float>*>;

void expect_header(TableReader& table, const std::string& expected) {
  std::string_view header;
  if (!table.next_line(header) || header != expected) {
    std::string shown = expected;
    for (char& c : shown) c = c == '\t' ? ' ' : c;
    table.refuse(": expected the header \"" + shown + "\", which this case's model writes.");
  }
}

/// Whether a coordinate is the one of the centre, up to the six digits that were written of it.
bool agrees(double found, double centre) {
  return std::fabs(found - centre) <= 1e-5 * std::fabs(centre) + 1e-3;
}

}  // namespace

void read_snapshot(const CaseResults& results, const SnapshotFile& file, Snapshot& snapshot) {
  const Mesh& mesh = results.mesh;
  const std::size_t n = mesh.n_cells();
  Columns columns;
  std::string header;
  if (results.files.has_sediment) {
    header = "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy";
    columns = {&snapshot.bed, &snapshot.h,   &snapshot.qx, &snapshot.qy,
               &snapshot.hs,  &snapshot.qsx, &snapshot.qsy};
  } else {
    // Intended: zb is left out, the mean z of the nodes, which a bed file may have replaced.
    header = "x\ty\tzb\th\tqx\tqy";
    columns = {nullptr, &snapshot.h, &snapshot.qx, &snapshot.qy};
    if (results.files.has_infiltration) {
      header += "\tf";
      columns.push_back(&snapshot.infiltrated);
    }
  }
  snapshot.time = file.time;
  for (auto* column : columns) {
    if (column != nullptr) column->resize(n);
  }

  TableReader table(file.name);
  expect_header(table, header);
  std::array<double, 9> values;
  const std::span row = std::span(values).first(2 + columns.size());
  std::size_t i = 0;
  for (; table.next_row(row); ++i) {
    if (i == n) {
      table.refuse(": found a row more than the " + std::to_string(n) +
                   " cells of the mesh. Is it a result of this case?");
    }
    const double x = mesh.center_x[i] - mesh.origin[0], y = mesh.center_y[i] - mesh.origin[1];
    if (!agrees(row[0], x) || !agrees(row[1], y)) {
      table.refuse(": found the centre (" + utils::fixed_text(row[0], 6) + ", " +
                   utils::fixed_text(row[1], 6) + "), expected that of cell " + std::to_string(i) +
                   ", (" + utils::fixed_text(x, 6) + ", " + utils::fixed_text(y, 6) +
                   "). Is it a result of this mesh?");
    }
    for (std::size_t k = 0; k < columns.size(); ++k) {
      if (columns[k] != nullptr) (*columns[k])[i] = static_cast<float>(row[2 + k]);
    }
  }
  if (i < n) {
    table.refuse(": found the end of the file after " + std::to_string(i) + " rows, expected " +
                 std::to_string(n) + ", one per cell.");
  }
}

}  // namespace exports
