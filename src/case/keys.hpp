// The keys of the data file: all that reads, checks, writes or lists them draws on this table.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace cases {

/// A file is a text that names something to read, a point two numbers in brackets.
enum class KeyKind { text, file, number, point, section };

/// The last name of a path.
constexpr std::string_view last_name_of(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

struct Key {
  /// When a run asks for it: always, with sediments, if it stands there, or if another key stands
  /// there.
  enum class Use { always, sediments, optional, with_other };

  const char* path;  ///< its place, as messages name it: "mesh/nodes"
  KeyKind kind;
  Use use;
  /// For `optional`: what takes its place where it does not stand, in its unit if it is a number;
  /// empty where nothing does. For `with_other`: the path of the other key.
  const char* other;
  const char* unit;
  const char* meaning;

  /// Its name within its section.
  constexpr std::string_view name() const { return last_name_of(path); }
  /// The path of its section, empty at the top.
  constexpr std::string_view section() const {
    const std::size_t slash = std::string_view(path).rfind('/');
    return std::string_view(path).substr(0, slash == std::string_view::npos ? 0 : slash);
  }
};

// Names that keys of the model take as values.
inline constexpr char water_model[] = "Quillmere";
inline constexpr char sediment_model[] = "Bramsett";

/// Every key, a section before what it holds.
inline constexpr auto keys = [] {
  using enum KeyKind;
  using enum Key::Use;
  return std::to_array<Key>({
      {"name", text, always, "", "", "title of the run, repeated in the log"},
      {"t0", number, always, "", "s", "start of the simulation"},
      {"tend", number, always, "", "s", "end of the simulation"},
      {"CFL", number, always, "", "",
       "Courant number: the step is this times the stable step; 0.9 is a good value"},
      {"crs", text, optional, "", "",
       "coordinate reference system of the mesh, as in EPSG:32632, for results and exports"},
      {"epoch", text, optional, "", "",
       "date and hour of the time 0 s, UTC, as in 2026-05-01T06:00:00Z, for the same; otherwise "
       "1970-01-01T00:00:00Z"},
      {"$schema", text, optional, "", "",
       "address of the schema of data files, for editors; no run uses it"},
      {"extensions", section, optional, "", "", "kept for later; no run uses it"},
      {"mesh", section, always, "", "", "the mesh"},
      {"mesh/nodes", file, always, "", "m", "nodes of the mesh"},
      {"mesh/cells", file, always, "", "", "cells of the mesh"},
      {"mesh/edges", file, always, "", "", "edges of the mesh, and the boundary conditions"},
      {"mesh/origin", point, optional, "", "m",
       "[x, y] that import --origin took from all coordinates; exports and results in NetCDF add it"},
      {"model", section, always, "", "", "the model"},
      {"model/name", text, always, "", "", "Quillmere (water) or Bramsett (water and sediments)"},
      {"model/flux scheme", text, always, "", "",
       "LHLLC, or HLL2 (second order, positive) or HLL1 (its first-order form, with sediments "
       "too)"},
      {"model/zero depth value", number, optional, "0.0001", "m",
       "depth up to which a cell counts as dry"},
      {"model/conditions", section, always, "", "", "fields of the cells"},
      {"model/conditions/initial conditions", file, always, "", "m, m2/s",
       "level and unit discharges of every cell at the start"},
      {"model/conditions/fixed bed level", file, optional, "mean of the nodes of a cell", "m",
       "bed of every cell"},
      {"model/conditions/friction", file, optional, "no friction", "s/m^(1/3)",
       "Manning coefficient of every cell"},
      {"model/conditions/initial sediments level", file, sediments, "", "m",
       "thickness of the erodible layer of every cell"},
      {"model/parameters", section, sediments, "", "", "the sediments"},
      {"model/parameters/sediments mean grain diameter", number, sediments, "", "m",
       "mean diameter of the grains"},
      {"model/parameters/sediments density", number, sediments, "", "",
       "relative to water: 2.65, not 2650"},
      {"model/parameters/sediments friction coefficient", number, sediments, "", "s/m^(1/3)",
       "repeated in the log; transport uses the friction file"},
      {"model/parameters/sediments porosity", number, sediments, "", "",
       "of the bed, from 0 to less than 1"},
      {"model/sources", section, always, "", "", "rain and soils; may be empty, {}"},
      {"model/sources/rainfall", file, optional, "no rain", "s, m/s", "hyetograms"},
      {"model/sources/hyetocells", file, with_other, "model/sources/rainfall", "",
       "the hyetogram of every cell"},
      {"model/sources/infiltration", file, optional, "no infiltration", "", "soils"},
      {"model/sources/infiltracells", file, with_other, "model/sources/infiltration", "",
       "the soil of every cell"},
      {"model/sources/initial infiltration", file, optional, "0 m", "m",
       "water in the soil of every cell at the start"},
      {"output", section, always, "", "", "the results"},
      {"output/folder", text, always, "", "", "put in front of result names: end it with /"},
      {"output/time step enveloppe of results", number, always, "", "s",
       "interval between envelopes"},
      {"output/final state", text, optional, "", "",
       "file for the state at the end of the run, and where it is interrupted"},
      {"output/maxima of flow", section, optional, "", "",
       "largest depths, levels, speeds and discharges of the cells, and times"},
      {"output/maxima of flow/file", text, always, "", "", "file for them"},
      {"output/maxima of flow/arrival depth", number, optional, "0.05", "m",
       "cells that are deeper are under water: it arrives then, and its time counts"},
      {"output/snapshots of flow", file, optional, "no snapshots", "s", "times of the snapshots"},
      {"output/results", text, optional, "", "",
       "NetCDF file that grows by every snapshot while the run goes on"},
      {"output/results times", file, optional, "", "s",
       "times of the snapshots in it; otherwise those of the snapshots of flow"},
      {"output/results precision", text, optional, "", "",
       "of the numbers in it: single or double; otherwise single"},
      {"output/gauges", file, optional, "no gauges", "s, m", "points whose flow is recorded"},
      {"output/discharges", file, optional, "no sections", "s",
       "sections whose discharge is recorded"},
  });
}();

/// The key of a name in a section, "" at the top; null if there is none.
constexpr const Key* find_key(std::string_view section, std::string_view name) {
  for (const Key& key : keys) {
    if (key.section() == section && key.name() == name) return &key;
  }
  return nullptr;
}

/// The key of the section of a key; null for one at the top.
constexpr const Key* section_of(const Key& key) {
  for (const Key& section : keys) {
    if (section.path == key.section()) return &section;
  }
  return nullptr;
}

/// The key of a path that is known when the program is built: a path that is none does not compile.
consteval const Key& key(std::string_view path) {
  for (const Key& key : keys) {
    if (key.path == path) return key;
  }
  throw "no key of the data file";
}

/// What takes the place of a key that does not stand there, as text; empty if nothing does.
std::string default_of(const Key& key);
/// The same as a number, in the unit of the key.
double default_number(const Key& key);

/// What is wrong with a key of a result whose name is empty.
inline std::string empty_result_name(const Key& key) {
  return '"' + std::string(key.path) + "\" is empty, expected the name of a file";
}

/// Whether results are in double precision, of the text that asks for it; none of another text.
inline std::optional<bool> double_precision_of(const std::string& text) {
  if (text != "single" && text != "double") return std::nullopt;
  return text == "double";
}
inline constexpr char expected_precision[] = "single or double";

/// What is wrong with results that no key gives times.
inline std::string results_without_times() {
  return '"' + std::string(key("output/results").path) + "\" needs times: expected \"" +
         key("output/results times").path + "\" or \"" + key("output/snapshots of flow").path + '"';
}

/// What is wrong with an arrival depth (m); nothing if it is well.
std::optional<std::string> fault_of_arrival_depth(double depth);

/// The path of a name in a section, as messages name it.
inline std::string path_of(const std::string& section, const std::string& name) {
  return section.empty() ? name : section + "/" + name;
}

}  // namespace cases
