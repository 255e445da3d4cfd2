#include "mesh/import_fields.hpp"

#include <map>
#include <optional>
#include <string>

#include "case/read_fields.hpp"
#include "case/read_rain.hpp"
#include "case/read_soils.hpp"
#include "case/write_case.hpp"
#include "mesh/fields.hpp"
#include "mesh/numbers.hpp"
#include "mesh/steady_rain.hpp"
#include "support/Error.hpp"
#include "support/read_file.hpp"
#include "utils/TextScanner.hpp"
#include "utils/counted.hpp"
#include "utils/files.hpp"

namespace mesh_import {

namespace {

/// Levels of the cells, m; those without one keep that of the mesh file, or else the mean of their
/// nodes.
std::vector<double> bed_levels(const Mesh& mesh, const std::vector<std::string>& requests) {
  std::vector<double> levels;
  const auto given = values_of_cells(mesh, "--bed", requests, RasterUse::mean);
  for (std::size_t i = 0; i < given.size(); ++i) {
    const double usual =
        mesh.bed_of_cell.empty() ? mesh.center(mesh.cells[i]).z : mesh.bed_of_cell[i];
    levels.push_back(as_written(given[i].value_or(usual)));
  }
  return levels;
}

/// Manning's coefficients are the inverse ones.
std::vector<double> manning_of_strickler(const Mesh& mesh,
                                         const std::vector<std::string>& requests) {
  std::vector<double> values = values_of_all_cells(mesh, "--friction-strickler", requests);
  for (double& value : values) {
    if (!(value > 0.0)) {
      throw tools::Error("--friction-strickler: found " + shown(value) + ", expected above 0.");
    }
    value = 1.0 / value;
  }
  return values;
}

/// Takes the thickness of the sediment from the bed, which was its surface.
void lower_bed_to_rock(Case& contents) {
  if (contents.bed.empty()) {
    for (const Cell& cell : contents.mesh.cells) {
      contents.bed.push_back(contents.mesh.center(cell).z);
    }
  }
  for (std::size_t i = 0; i < contents.bed.size(); ++i) contents.bed[i] -= contents.sediment[i];
}

void set_sediments(const ImportOptions& options, Case& contents) {
  for (const auto& thickness :
       values_of_cells(contents.mesh, "--sediment", options.sediment, RasterUse::mean)) {
    contents.sediment.push_back(thickness.value_or(0.0));
  }
  contents.sediments.d50 = options.grain_diameter;
  contents.sediments.density = options.grain_density;
  contents.sediments.porosity = options.porosity;
}

/// The waves of the water bound the time step. In a film, the bed load of such a step can raise the
/// bed by more than the film's depth, and water that stands higher runs faster. A millimetre has
/// kept dam breaks of 0.35 m over grains of 0.2 to 10 mm from collapsing, on cells of 10 to 25 mm.
void warn_of_thin_films(std::ostream& out) {
  out << "No --zero-depth: films down to 0.0001 m move sediment. Where water spreads over a dry "
         "bed "
         "they can pile it up, and end the run with a collapsed time step; try a millimetre or "
         "more.\n";
}

/// Level of the water, m: the bed where no request puts it higher.
void set_water(const std::vector<std::string>& requests, Case& contents, std::ostream& out) {
  contents.level = bed_of_cells(contents);
  std::size_t n_wet = 0;
  if (!requests.empty()) {
    const auto given = values_of_cells(contents.mesh, "--level", requests, RasterUse::mean);
    for (std::size_t i = 0; i < given.size(); ++i) {
      if (!given[i] || !(*given[i] > contents.level[i])) continue;
      contents.level[i] = *given[i];
      ++n_wet;
    }
  }
  out << "Water stands in " << n_wet << " of " << utils::counted(contents.mesh.cells.size(), "cell")
      << " at the start.\n";
}

/// Cells with an ID that no term has.
struct UnknownId {
  std::size_t n_cells;
  std::size_t first;  ///< cell
};

/// The numbers of the terms of the cells, by their IDs; of two alike that of the later.
std::vector<int> terms_of_cells(const Mesh& mesh, const std::string& option,
                                const std::vector<std::string>& requests, const std::string& file,
                                const std::vector<int>& ids) {
  std::map<double, int> numbers = {{-1.0, -1}};
  for (std::size_t i = 0; i < ids.size(); ++i) numbers[ids[i]] = static_cast<int>(i);
  std::vector<int> terms;
  std::map<double, UnknownId> unknown;
  const auto values = values_of_cells(mesh, option, requests, RasterUse::most_frequent);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto known = numbers.find(values[i].value_or(-1.0));
    if (known == numbers.end()) {
      unknown.try_emplace(*values[i], UnknownId{0, i}).first->second.n_cells++;
    } else {
      terms.push_back(known->second);
    }
  }
  std::string found;
  for (const auto& [id, cells] : unknown) {
    const Node center = mesh.center(mesh.cells[cells.first]);
    found += (found.empty() ? "" : ", ") + shown(id) + " in " +
             utils::counted(cells.n_cells, "cell") + ", the first at " +
             shown_point(center.x, center.y);
  }
  if (!found.empty()) {
    throw tools::Error(option + ": found the ID " + found + "; expected one of " + file +
                       ", or -1.");
  }
  return terms;
}

/// A hyetogram for every intensity that is asked for.
void set_steady_rain(const ImportOptions& options, Case& contents) {
  constexpr int burst = 10;  // s
  std::vector<std::string> requests;
  for (const std::string& request : options.rain) {
    const SteadyRain rain = steady_rain(request);
    const int id = static_cast<int>(contents.hyetograms.size()) + 1;
    contents.hyetograms.push_back({id, burst, {0.0}, {as_written(rain.intensity)}});
    requests.push_back(rain.target + std::to_string(id));
  }
  contents.rain = terms_of_cells(contents.mesh, "--rain", requests, "those of the command line",
                                 cases::ids_of(contents.hyetograms));
}

void set_rain(const ImportOptions& options, Case& contents) {
  if (options.hyetograms.empty()) return set_steady_rain(options, contents);
  const std::string file = utils::readable_again(options.hyetograms);
  utils::TextScanner scanner(file);
  contents.hyetograms = cases::read_hyetograms(scanner, [](const cases::Hyetogram&) {});
  contents.given_texts[cases::rain_file_name] = tools::read_file(file);
  contents.rain = terms_of_cells(contents.mesh, "--rain", options.rain, options.hyetograms,
                                 cases::ids_of(contents.hyetograms));
}

void set_soils(const ImportOptions& options, Case& contents) {
  const std::string file = utils::readable_again(options.soils);
  utils::TextScanner scanner(file);
  contents.soils = cases::read_soil_classes(
      scanner, [](const cases::Soil&) {},
      [&](const std::string&) { scanner.refuse("type", "GreenAmpt or Horton"); });
  contents.given_texts[cases::soils_file_name] = tools::read_file(file);
  contents.soil = terms_of_cells(contents.mesh, "--soil", options.soil, options.soils,
                                 cases::ids_of(contents.soils));
}

}  // namespace

void import_fields(const ImportOptions& options, Case& contents, std::ostream& out) {
  const Mesh& mesh = contents.mesh;
  if (!options.bed.empty() || !mesh.bed_of_cell.empty()) {
    contents.bed = bed_levels(mesh, options.bed);
  }
  if (!options.friction.empty()) {
    contents.friction = values_of_all_cells(mesh, "--friction", options.friction);
  } else if (!options.strickler.empty()) {
    contents.friction = manning_of_strickler(mesh, options.strickler);
  } else {
    out << "No --friction: the bed is smooth.\n";
  }
  if (!options.sediment.empty()) {
    set_sediments(options, contents);
    if (options.terrain_is_surface) {
      lower_bed_to_rock(contents);
    } else {
      out << "Elevations are those of the rock under the sediment (--terrain-is surface takes them "
             "for its surface).\n";
    }
    if (!options.zero_depth) warn_of_thin_films(out);
  }
  set_water(options.level, contents, out);
  if (!options.rain.empty()) set_rain(options, contents);
  if (!options.soil.empty()) set_soils(options, contents);
}

std::vector<double> bed_of_cells(const Case& contents) {
  std::vector<double> bed = contents.bed;
  if (bed.empty()) {
    bed.reserve(contents.mesh.cells.size());
    for (const Cell& cell : contents.mesh.cells) bed.push_back(contents.mesh.center(cell).z);
  }
  for (std::size_t i = 0; i < contents.sediment.size(); ++i) bed[i] += contents.sediment[i];
  return bed;
}

}  // namespace mesh_import
