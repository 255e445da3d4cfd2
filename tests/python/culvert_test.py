"""The example of two catchments keeps its water."""
import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "examples", "python"))

import culvert


class Culvert(unittest.TestCase):
    def test_rain_is_behind_the_embankment_or_has_gone_through(self):
        rained, behind, passed, below = culvert.main(t_end=1800.0)
        self.assertGreater(passed, 0.2 * rained)
        self.assertAlmostEqual(passed, below, delta=1e-9 * rained)
        self.assertAlmostEqual(behind + passed, rained, delta=0.002 * rained)


if __name__ == "__main__":
    unittest.main()
