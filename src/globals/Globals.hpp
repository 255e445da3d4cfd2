// State of the process that the objects of a model read. The flow on objects sets it.
#pragma once

namespace Constants {
extern double ZERO_DEPTH;  ///< dry-depth threshold, m; water is strictly deeper
}

namespace Globals {
extern double t;   ///< simulated time, s
extern double dt;  ///< time step, s
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
extern bool g_notHyperbolicIsTold;  ///< that the coupled system is not somewhere, said once per run
}  // namespace Globals_Sed
