"""All cases, in the order of the document."""
from validation.cases import (circular, dam_break, flood, infiltration, inflow, rain, rest,
                              sinking_bed, steady, thacker)

CASES = [case for module in (rest, dam_break, circular, thacker, steady, rain, infiltration, inflow,
                             sinking_bed, flood) for case in module.CASES]
