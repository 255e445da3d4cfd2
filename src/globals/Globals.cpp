#include "globals/Globals.hpp"

namespace Constants {
double ZERO_DEPTH = 0.0;
}

namespace Globals {
double t = 0.0;
double dt = 0.0;
}  // namespace Globals

namespace Globals_Params {
double tStart = 0.0;
double tEnd = 0.0;
}  // namespace Globals_Params

namespace Globals_Sed {
double g_d50 = 0.0;
double g_sedimentsDensity = 0.0;
double g_sedimentsManning = 0.0;
double g_sedimentsPorosity = 0.0;
bool g_notHyperbolicIsTold = false;
}  // namespace Globals_Sed
