// State of the process that set-up, time loop and outputs share.
#pragma once

#include <fstream>
#include <string>

class COutput;

namespace Constants {
extern double ZERO_DEPTH;  ///< dry-depth threshold, m; water is strictly deeper
}

namespace Globals {
extern bool displayMessage;       ///< whether summary lines are echoed on the console
extern std::string g_outputPath;  ///< prefix of output file names
extern double t;                  ///< simulated time, s
extern double dt;                 ///< time step, s
extern COutput myOutput;          ///< line writer of the gauges
extern std::ofstream spyFile;     ///< log of the run
}  // namespace Globals

namespace Globals_Params {
extern double tStart;  ///< start of the simulation, s
extern double tEnd;    ///< end of the simulation, s
}  // namespace Globals_Params

namespace Globals_Sed {
extern double g_d50;                ///< mean grain diameter, m
extern double g_sedimentsDensity;   ///< density of the sediment relative to water
extern double g_sedimentsManning;   ///< friction coefficient, s/m^(1/3); reported, not used
extern double g_sedimentsPorosity;  ///< porosity of the bed
}  // namespace Globals_Sed

/// Path of the data file, from the command line or the prompt.
extern std::string _dataFile;
