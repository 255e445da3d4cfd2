// What "--help" and "--version" print.
#pragma once

#include <ostream>
#include <vector>

#include "utils/InputParser.hpp"

inline const std::vector<utils::CmdOption> known_options = {
    {"-f", true},        {"-nodisplay", false},       {"--progress", false},
    {"--report", true},  {"--checkpoint", true},      {"--checkpoint-every", true},
    {"--restart", true}, {"--restart-anyway", false}, {"--device", true},
    {"--help", false},   {"--schema", false},         {"--version", false}};

inline void print_version(std::ostream& out) { out << "quillmere " QUILLMERE_VERSION "\n"; }

inline void print_usage(std::ostream& out) {
  out << "Usage: quillmere -f DATA_FILE [-nodisplay] [--progress] [--report FILE]\n"
         "                 [--checkpoint NAME [--checkpoint-every MINUTES]]\n"
         "                 [--restart NAME [--restart-anyway]] [--device card]\n"
         "\n"
         "Simulates free-surface flow over terrain: one scenario, described by a JSON data file.\n"
         "\n"
         "Examples:\n"
         "  quillmere -f data.json               run the scenario of data.json\n"
         "  quillmere -f data.json -nodisplay    the same, with nothing but the clock on the "
         "console\n"
         "\n"
         "Options:\n"
         "  -f DATA_FILE   data file; its name is read from standard input when absent. Paths in\n"
         "                 it are relative to the working directory\n"
         "  -nodisplay     write welcome, name and execution time to log.txt only\n"
         "  --progress     show on standard error how far the run is: a line rewritten in place on "
         "a\n"
         "                 terminal, a line every 30 s elsewhere\n"
         "  --report FILE  write a JSON report at the end of the run, however it ends: outcome, "
         "wall\n"
         "                 time, books of water and sediment, steps and the cells that set them,\n"
         "                 largest velocities, keys that were ignored, surroundings of a failure\n"
         "  --checkpoint NAME\n"
         "                 keep the state of the run in NAME.a and NAME.b in turn: every 30 "
         "minutes,\n"
         "                 at SIGUSR1, when a signal ends the run, and at its end\n"
         "  --checkpoint-every MINUTES\n"
         "                 keep it at this interval\n"
         "  --restart NAME go on from the newer of NAME.a and NAME.b that is whole; results go on\n"
         "                 where they were. Other end times, outputs, series and rain are taken\n"
         "  --restart-anyway\n"
         "                 go on although something else has changed too\n"
         "  --device NAME:{card,emulated,watched}\n"
         "                 compute the steps on a graphics card, where the program was built for "
         "one;\n"
         "                 results are the same. The others play a card on the processor, for "
         "tests\n"
         "  --help         print this help and exit\n"
         "  --schema       print the JSON schema of data files, for editors, and exit\n"
         "  --version      print the version and exit\n"
         "\n"
         "Results go to the output folder named in the data file, the log to log.txt in the\n"
         "working directory. Exit status: 0 when the run is complete, 255 after an error, 1 for\n"
         "an unknown rain or soil ID, 130, 143 or 129 when SIGINT (Ctrl-C), SIGTERM or SIGHUP\n"
         "ended the run after its current step; a second signal ends it at once. Errors are on\n"
         "standard error, except those of rain and soil IDs and soil types, which are on\n"
         "standard output.\n";
}
