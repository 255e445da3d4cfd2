#include "mesh/check/case_mesh.hpp"

#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <vector>

#include "case/SeriesFiles.hpp"
#include "case/keys.hpp"
#include "case/mesh_records.hpp"
#include "mesh/check/checked_file.hpp"
#include "utils/counted.hpp"

namespace tools::check {

namespace {

using cases::key;
using cases::Number;

/// The number of records of a file, which is 0 if it was refused: then any index may be right.
Number limit_of(const CheckedFile& file, Number count) {
  return count == 0 && !file.is_well() ? std::numeric_limits<Number>::max() : count;
}

/// Answers the number of nodes, as far as it is known.
Number read_nodes(const std::string& name, CheckedCase& checked, Findings& findings) {
  CheckedFile file(name, key("mesh/nodes").path, findings);
  const Number count = cases::read_node_records(file, checked.contents.mesh);
  checked.has_nodes = file.is_well();
  return limit_of(file, count);
}

/// Answers the number of cells, as far as it is known.
Number read_cells(const std::string& name, Number n_nodes, CheckedCase& checked,
                  Findings& findings) {
  CheckedFile file(name, key("mesh/cells").path, findings);
  const auto look_at = [](Number) {};
  const Number count = cases::read_cell_records(file, n_nodes, checked.contents.mesh, look_at);
  checked.has_cells = file.is_well();
  if (count == 0 && file.is_well()) {
    findings.error("no cells", name + ": the mesh has no cells");
  }
  return limit_of(file, count);
}

/// The codes of a model, as in "-1 to -5, -33 or -44".
std::string expected_codes(bool with_sediments) {
  std::set<int, std::greater<>> codes = {edge_code::interior};
  for (const cases::BoundaryKind& kind : cases::boundary_kinds) {
    if (kind.with_sediments || !with_sediments) codes.insert(kind.code);
  }
  std::vector<std::string> runs;
  for (auto first = codes.begin(); first != codes.end();) {
    auto last = first;
    while (codes.count(*last - 1) > 0) ++last;
    const std::string end = last == first ? "" : " to " + std::to_string(*last);
    runs.push_back(std::to_string(*first) + end);
    first = std::next(last);
  }
  return utils::alternatives(runs) +
         (with_sediments ? ", the codes of the model with sediments" : "");
}

class EdgesReader {
 public:
  EdgesReader(const DataFile& data, CheckedCase& checked, Findings& findings)
      : data_(data),
        checked_(checked),
        findings_(findings),
        file_(data.files.at(key("mesh/edges")), key("mesh/edges").path, findings) {}

  void read(Number n_nodes, Number n_cells) {
    cases::Case& contents = checked_.contents;
    cases::SeriesFiles series(contents.series);
    const auto name_only = [](const std::string& file) { return cases::Series{file, {}, {}}; };
    bool has_interior = false;
    cases::read_edge_records(
        file_, n_nodes, n_cells, contents.mesh, [this](int code) { check_code(code); },
        [&](const cases::EdgeRecord& edge) {
          add_edge(contents.mesh, edge, series.number_of(edge.file, name_only));
          has_interior |= edge.code == edge_code::interior;
        });
    checked_.has_edges = file_.is_well();
    if (data_.flux_scheme) check_scheme(*data_.flux_scheme, has_interior);
  }

 private:
  std::string expected_schemes() const {
    std::string text;
    for (const cases::SchemeKind& kind : cases::schemes) {
      if (data_.has_sediments() && !kind.with_sediments) continue;
      text += (text.empty() ? "\"" : ", \"") + std::string(kind.name) + "\"";
    }
    return text;
  }

  void check_scheme(const std::string& name, bool has_interior) {
    const cases::SchemeKind* const scheme = cases::find_scheme(name);
    if (scheme == nullptr ? has_interior : data_.has_sediments() && !scheme->with_sediments) {
      findings_.error("flux scheme",
                      "\"model/flux scheme\" is \"" + name + "\", expected " + expected_schemes());
    }
  }

  void check_code(int code) {
    const cases::BoundaryKind* const kind = cases::boundary_kind(code);
    if (kind != nullptr && (kind->with_sediments || !data_.has_sediments())) return;
    file_.refuse("boundary code", expected_codes(data_.has_sediments()));
  }

  const DataFile& data_;
  CheckedCase& checked_;
  Findings& findings_;
  CheckedFile file_;
};

}  // namespace

void read_mesh(const DataFile& data, CheckedCase& checked, Findings& findings) {
  constexpr Number unknown = std::numeric_limits<Number>::max();
  const std::string* const nodes = data.files.find(key("mesh/nodes"));
  const std::string* const cells = data.files.find(key("mesh/cells"));
  const Number n_nodes = nodes != nullptr ? read_nodes(*nodes, checked, findings) : unknown;
  const Number n_cells =
      cells != nullptr ? read_cells(*cells, n_nodes, checked, findings) : unknown;
  if (data.files.find(key("mesh/edges")) != nullptr)
    EdgesReader(data, checked, findings).read(n_nodes, n_cells);
}

}  // namespace tools::check
