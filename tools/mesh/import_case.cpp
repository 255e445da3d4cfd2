#include "mesh/import_case.hpp"

#include <cctype>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mesh/boundaries.hpp"
#include "mesh/case_writer.hpp"
#include "mesh/import_edges.hpp"
#include "mesh/import_features.hpp"
#include "mesh/import_fields.hpp"
#include "mesh/import_mesh.hpp"
#include "mesh/import_origin.hpp"
#include "mesh/import_run.hpp"
#include "mesh/run_options.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

/// A name as a shell takes it for one word, and no program for an option.
std::string shell_word(const std::string& name) {
  std::string word;
  bool is_plain = true;
  for (const char c : name) {
    is_plain = is_plain && (std::isalnum(static_cast<unsigned char>(c)) ||
                            std::string_view("_-./+,:@%").find(c) != std::string_view::npos);
    word += c == '\'' ? "'\\''" : std::string(1, c);
  }
  if (!is_plain) word = "'" + word + "'";
  return (name.rfind('-', 0) == 0 ? "./" : "") + word;
}

void check_folder(const ImportOptions& options) {
  const auto data = std::filesystem::path(options.folder) / "data.json";
  if (!options.overwrite && std::filesystem::exists(data)) {
    throw tools::Error(data.string() +
                       ": there is a case already; expected a new folder, or --overwrite.");
  }
}

}  // namespace

void import_case(ImportOptions options, const MeshSource& source, std::ostream& out) {
  check_usage(options);
  BoundaryRequests requests;
  for (const auto& text : options.boundaries) requests.conditions.push_back(parse_boundary(text));
  for (const auto& text : options.spreads) requests.spreads.push_back(parse_spread(text));
  Case contents;
  for (const auto& text : options.gauges) contents.gauges.push_back(parse_gauge(text));
  if (!options.origin.empty()) contents.origin = parse_point("--origin", options.origin);
  if (!options.snapshots.empty()) contents.snapshots = parse_snapshots(options.snapshots);
  check_folder(options);
  contents.mesh = source(options, out);
  set_ground(options, contents.mesh, out);
  add_drawn_zones(options, contents.mesh, out);
  check_usage(options);
  import_fields(options, contents, out);
  import_edges(options, std::move(requests), contents, out);
  import_run(options, contents, out);
  move_to_origin(contents, out);
  const std::size_t n_removed =
      write_case(contents, options.folder, options.overwrite ? Overwrite::yes : Overwrite::no);
  if (n_removed > 0) {
    out << "Removed " << utils::counted(n_removed, "result") << " of the case that was there.\n";
  }
  out << "\n"
      << boundary_table(contents.boundaries) << "\nThe case is complete. Run it: cd "
      << shell_word(options.folder) << " && quillmere -f data.json\n";
}

}  // namespace mesh_import
