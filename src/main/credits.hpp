// The credits block of the log.
#pragma once

#include <array>
#include <ostream>

/// Fields of work that the program rests on, with the years of their founding papers.
inline constexpr std::array<const char*, 7> contributors = {"Shallow-water equations (1871)",
                                                            "Bed friction (1891)",
                                                            "Infiltration (1911)",
                                                            "Bed evolution (1925)",
                                                            "Bed-load transport (1948)",
                                                            "Approximate Riemann solvers (1983)",
                                                            "Lateralised bed-step fluxes (2003)"};

/// Writes the author line and the contributor lines.
inline void write_credits(std::ostream& log) {
  log << "Originally created by:\n"
      << "    The Quillmere developers (2026)\n"
      << "Contributors:\n";
  for (const char* contributor : contributors) log << "    " << contributor << '\n';
}
