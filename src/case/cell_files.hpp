// The files with numbers for every cell: all that reads, checks or writes them draws on this table.
#pragma once

#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "case/Case.hpp"
#include "case/keys.hpp"

namespace cases {

/// A column of a file, and where it goes.
struct CellColumn {
  const char* field;  ///< for messages
  std::vector<double> CellFields::*values;
};

struct CellFile {
  const Key& key;    ///< that names it
  const char* log;   ///< what the log says of it, before its name
  const char* name;  ///< in a case that the program writes
  std::array<CellColumn, 3> all_columns;
  std::size_t n_columns = 1;

  constexpr std::span<const CellColumn> columns() const {
    return std::span(all_columns).first(n_columns);
  }
  bool is_in(const CellFields& fields) const { return !(fields.*all_columns[0].values).empty(); }
};

/// In the order in which a run reads them.
inline constexpr auto cell_files =
    std::to_array<CellFile>({{key("model/conditions/fixed bed level"),
                              "Fixed bed level (zbr) set from: ",
                              "bed.txt",
                              {{{"bed level", &CellFields::bed}}}},
                             {key("model/conditions/initial sediments level"),
                              "Sediment level set from: ",
                              "sediment.txt",
                              {{{"sediment thickness", &CellFields::sediment}}}},
                             {key("model/conditions/friction"),
                              "Friction parameters set from: ",
                              "friction.txt",
                              {{{"Manning coefficient", &CellFields::manning}}}},
                             {key("model/conditions/initial conditions"),
                              "Hydrodynamic initial conditions read from: ",
                              "initial.txt",
                              {{{"free-surface level", &CellFields::level},
                                {"unit discharge qx", &CellFields::qx},
                                {"unit discharge qy", &CellFields::qy}}},
                              3},
                             {key("model/sources/initial infiltration"),
                              "Initial infiltration set from: ",
                              "initial_infiltration.txt",
                              {{{"infiltrated depth", &CellFields::infiltrated}}}}});

/// The file of a key; null if it is none with numbers for every cell.
constexpr const CellFile* cell_file(const Key& key) {
  for (const CellFile& file : cell_files) {
    if (&file.key == &key) return &file;
  }
  return nullptr;
}

}  // namespace cases
