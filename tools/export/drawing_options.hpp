// Options of pictures, and what their texts mean.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "export/DrawingJob.hpp"

namespace exports {

/// The finite numbers that a text separates by a sign; none if it is something else.
std::optional<std::vector<double>> numbers_of(const std::string& text, char separator);

/// How maps look: extent, resolution, gauges, the reference system, and which cells are dry.
void add_map_options(CLI::App& command, DrawingStyle& style);
/// What the colours of one map stand for.
void add_colour_options(CLI::App& command, DrawingStyle& style);

}  // namespace exports
