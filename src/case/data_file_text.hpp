// The data file of a case that is written.
#pragma once

#include <string>

#include "case/write_case.hpp"

namespace cases {

// Names of the files that it names; those with numbers for every cell stand in cell_files.
inline constexpr char nodes_file_name[] = "nodes.txt";
inline constexpr char cells_file_name[] = "cells.txt";
inline constexpr char edges_file_name[] = "edges.txt";
inline constexpr char hyetocells_file_name[] = "hyetocells.txt";
inline constexpr char soilcells_file_name[] = "soilcells.txt";
inline constexpr char snapshots_file_name[] = "snapshots.txt";
inline constexpr char gauges_file_name[] = "gauges.txt";
inline constexpr char sections_file_name[] = "sections.txt";

std::string data_file_text(const Case& contents, const RunRequest& run);

}  // namespace cases
