// A dam break in a channel with an uneven bed and Manning friction, as a case folder of any size.
#pragma once

#include <string>

struct Channel {
  int nx, ny;  ///< squares of 1 m, each cut into two triangles
  int cells() const { return 2 * nx * ny; }
};

/// About `cells` triangles, four times as long as wide.
Channel channel_of(int cells);

enum class ChannelKind {
  wet,       ///< 2 m of water against 1 m
  dry,       ///< the same in the first tenth of the channel, no water in the rest
  shuffled,  ///< wet, with nodes, cells and edges in random order
  sources,   ///< wet, with rain from two hyetograms, and soils of both kinds
  sediment   ///< wet, over 0.5 m of sand that moves
};

/// Writes mesh, fields and data file into an existing folder; the run ends at t_end (s).
void write_channel_case(const Channel& channel, ChannelKind kind, const std::string& scheme,
                        const std::string& folder, double t_end);
