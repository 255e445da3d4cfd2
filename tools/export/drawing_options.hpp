// Options of pictures, and what their texts mean.
#pragma once

#include "export/DrawingJob.hpp"

namespace CLI {
class App;
}

namespace exports {

/// How maps look: extent, resolution, gauges, the reference system, and which cells are dry.
void add_map_options(CLI::App& command, DrawingStyle& style);
/// What the colours of one map stand for.
void add_colour_options(CLI::App& command, DrawingStyle& style);

}  // namespace exports
