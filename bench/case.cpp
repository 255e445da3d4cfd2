// Writes the case of a dam break in a channel into an existing folder: bench_case FOLDER CELLS KIND
// STEPS, which ends after about so many steps.
#include <cstdlib>
#include <iostream>
#include <map>
#include <string>

#include "channel_case.hpp"

int main(int argc, char** argv) {
  const std::map<std::string, ChannelKind> kinds = {{"wet", ChannelKind::wet},
                                                    {"dry", ChannelKind::dry}};
  const auto kind = kinds.find(argc > 3 ? argv[3] : "");
  const int cells = argc > 2 ? std::atoi(argv[2]) : 0;
  const double steps = argc > 4 ? std::atof(argv[4]) : 0.0;
  if (cells < 100 || kind == kinds.end() || !(steps >= 1.0)) {
    std::cerr << "usage: bench_case FOLDER CELLS wet|dry STEPS, at least 100 cells\n";
    return 2;
  }
  constexpr double usual_step = 0.05;  // s
  write_channel_case(channel_of(cells), kind->second, "LHLLC", argv[1], usual_step * steps);
}
