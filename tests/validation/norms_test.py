"""The norms and orders by which the cases are judged."""
import unittest

import numpy as np

from validation import norms


class Norms(unittest.TestCase):
    def test_relative_l1_weighs_with_areas(self):
        error = norms.relative_l1(np.array([1.0, -2.0]), np.array([4.0, 4.0]), np.array([1.0, 3.0]))
        self.assertAlmostEqual(error, 7 / 16)

    def test_order_is_the_exponent_of_the_size(self):
        sizes = [0.4, 0.2, 0.1]
        orders = norms.observed_orders(sizes, [3 * size ** 0.8 for size in sizes])
        self.assertIsNone(orders[0])
        np.testing.assert_allclose(orders[1:], 0.8)

    def test_no_order_where_errors_are_those_of_the_digits(self):
        orders = norms.observed_orders([0.4, 0.2, 0.1], [1e-3, 3e-7, 0.0])
        self.assertEqual(orders, [None, None, None])

    def test_yardstick_between_and_beyond_its_meshes(self):
        yardstick = {n: 7 / n for n in (100, 200, 400)}
        for n in (50, 100, 141.4, 400, 800):
            self.assertAlmostEqual(norms.yardstick_at(yardstick, n), 7 / n)


if __name__ == "__main__":
    unittest.main()
