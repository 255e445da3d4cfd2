#include "output/COutput.hpp"

#include <iostream>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"

COutput Globals::myOutput;

void COutput::Write(utils::LineFile& out, const std::vector<const ComputationalCell*>& cells,
                    double time, std::vector<HydraulicVariableSWE>& buffer) const {
  if (!out.is_open()) {
    // Intended: the message says "gauges.txt", whatever the file is called.
    std::cerr << "   The file gauges.txt couldn't be opened!" << std::endl;
    Thread::has_failed = true;
    Handoff::gauge.release();
    return;
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i] != nullptr) buffer[i] = cells[i]->UVal();
  }
  Handoff::gauge.release();

  utils::TextBuffer line;
  line << time << '\t';
  for (const HydraulicVariableSWE& state : buffer) line << state << '\t';
  line << '\n';
  out.write(line);
}
