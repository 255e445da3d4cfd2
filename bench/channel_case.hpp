// A dam break in a channel with an uneven bed and Manning friction, as a case folder of any size.
#pragma once

#include <string>

struct Channel {
  int nx, ny;  ///< squares of 1 m, each cut into two triangles
  int cells() const { return 2 * nx * ny; }
};

/// About `cells` triangles, four times as long as wide.
Channel channel_of(int cells);

/// Writes mesh, fields and data file into an existing folder; the run ends at t_end (s).
void write_channel_case(const Channel& channel, const std::string& folder, double t_end);
