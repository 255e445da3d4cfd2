"""All cases, in the order of the document."""
from validation.cases import (catchment, circular, dam_break, flood, infiltration, inflow, rain,
                              rain_slopes, rest, sinking_bed, steady, step, thacker, valley, vortex)

CASES = [case for module in (rest, dam_break, circular, thacker, vortex, steady, step, valley, rain,
                             rain_slopes, catchment, infiltration, inflow, sinking_bed, flood)
         for case in module.CASES]
