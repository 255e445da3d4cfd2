#include "output/COutput.hpp"

#include <iostream>

bool COutput::Write(utils::LineFile& out, double time,
                    const std::vector<GaugeState>& states) const {
  if (!out.is_open()) {
    // Intended: the message says "gauges.txt", whatever the file is called.
    std::cerr << "   The file gauges.txt couldn't be opened!" << std::endl;
    return false;
  }
  utils::TextBuffer line;
  line << time << '\t';
  for (const GaugeState& state : states) {
    line << state.h << '\t' << state.qx << '\t' << state.qy << "\t\t";
  }
  line << '\n';
  return out.write(line);
}
