"""The exact solutions against numbers worked out independently, and against their own equations."""
import unittest

import numpy as np

from validation.cases import (catchment, dam_break, infiltration, rain, rain_slopes, sinking_bed,
                              steady, step, thacker, vortex)

g = 9.81


class DamBreak(unittest.TestCase):
    def test_stoker_state_between_rarefaction_and_shock(self):
        for hl, hr, hm, um, shock in ((0.005, 0.001, 0.00253935717, 0.12727972, 0.20996340),
                                      (10, 1, 3.96174817, 7.34076904, 9.81929478),
                                      (2, 1, 1.45384089, 1.30583375, 4.18312793)):
            x = np.array([shock - 1e-6, shock + 1e-6])
            h, u = dam_break.stoker(x, 1.0, hl, hr)
            np.testing.assert_allclose(h, [hm, hr], rtol=1e-7)
            np.testing.assert_allclose(u, [um, 0], rtol=1e-7)

    def test_ritter_depths(self):
        h, _ = dam_break.ritter(np.array([2, 4, 5, 6, 7]) - 5.0, 6.0, 0.005)
        np.testing.assert_allclose(h, [0.005, 0.00420915, 0.00222222, 0.00086453, 0.00013608],
                                   atol=5e-9)

    def test_dressler_meets_the_still_reservoir(self):
        np.testing.assert_allclose(dam_break.dressler_coefficients(-1.0), 0, atol=1e-14)

    def test_dressler_without_friction_is_ritter(self):
        x = np.linspace(-30, 60, 50)
        h, u, _ = dam_break.dressler(x, 5.0, 6.0, 1e9)
        h0, u0 = dam_break.ritter(x, 5.0, 6.0)
        np.testing.assert_allclose(h, h0, atol=1e-9)
        np.testing.assert_allclose(u, u0, atol=1e-9)

    def test_dressler_solves_the_momentum_equation_but_for_higher_terms(self):
        hl, chezy, t, d = 6.0, 40.0, 1.0, 1e-4
        x = np.array([0.3 * t * np.sqrt(g * hl)])

        def solution(x, t):
            return dam_break.dressler(x, t, hl, chezy)[:2]

        h, u = solution(x, t)
        u_t = (solution(x, t + d)[1] - solution(x, t - d)[1]) / (2 * d)
        h_x, u_x = (np.subtract(solution(x + d, t), solution(x - d, t))) / (2 * d)
        friction = g * u ** 2 / (chezy ** 2 * h)
        self.assertLess(abs(u_t + u * u_x + g * h_x + friction) / friction, 0.015)


class FrictionlessSolutions(unittest.TestCase):
    def residuals(self, solution, bed, x, y, t, d=1e-5):
        """Of continuity and of both momentum equations."""
        def state(x, y, t):
            h, u, v = solution(x, y, t)
            return np.array([h, u, v])

        h, u, v = state(x, y, t)
        dt = (state(x, y, t + d) - state(x, y, t - d)) / (2 * d)
        dx = (state(x + d, y, t) - state(x - d, y, t)) / (2 * d)
        dy = (state(x, y + d, t) - state(x, y - d, t)) / (2 * d)
        z_x = (bed(x + d, y) - bed(x - d, y)) / (2 * d)
        z_y = (bed(x, y + d) - bed(x, y - d)) / (2 * d)
        return (dt[0] + u * dx[0] + h * dx[1] + v * dy[0] + h * dy[2],
                dt[1] + u * dx[1] + v * dy[1] + g * (dx[0] + z_x),
                dt[2] + u * dx[2] + v * dy[2] + g * (dy[0] + z_y))

    def test_solutions_satisfy_their_equations(self):
        line = lambda x, y, t: (*thacker.line(x, t), 0.0)  # noqa: E731

        def shelf(x, y, t):
            h, qx, qy = step.DryingStep().exact(np.array([x]), None, 4 + t)
            return h[0], qx[0] / h[0], qy[0]

        for solution, bed, place in ((thacker.planar, thacker.bowl, (2.3, 2.2)),
                                     (thacker.radial, thacker.bowl, (2.3, 1.8)),
                                     (line, thacker.parabola, (1.8, 0.0)),
                                     (vortex.vortex, lambda x, y: 0.0, (0.95, 0.42)),
                                     (shelf, lambda x, y: 0.0, (7.0, 0.0))):
            np.testing.assert_allclose(self.residuals(solution, bed, *place, 0.4), 0, atol=5e-8)

    def test_periods(self):
        periods = 2 * np.pi / np.array([thacker.PLANAR_OMEGA, thacker.RADIAL_OMEGA,
                                        thacker.LINE_OMEGA])
        np.testing.assert_allclose(periods, [4.48570, 2.24285, 2.00606], atol=1e-5)


class Bump(unittest.TestCase):
    x = np.array([2, 8.5, 9.5, 10.5, 11.5, 15])

    def test_depths(self):
        np.testing.assert_allclose(steady.bump_subcritical(self.x),
                                   [2, 1.879581, 1.727941, 1.727941, 1.879581, 2], atol=5e-7)
        np.testing.assert_allclose(steady.bump_transcritical(self.x),
                                   [1.014447, 0.893402, 0.697978, 0.553654, 0.447748, 0.405781],
                                   atol=5e-7)

    def test_place_of_the_jump(self):
        h, jump = steady.bump_with_shock(self.x)
        self.assertAlmostEqual(jump, 11.665618, places=6)
        np.testing.assert_allclose(h, [0.413736, 0.319729, 0.190266, 0.118722, 0.080397, 0.33],
                                   atol=5e-7)


class MacDonald(unittest.TestCase):
    def test_subcritical(self):
        case = steady.MacDonaldSubcritical()
        x = np.array([0, 500.0, 1000.0])
        np.testing.assert_allclose(case.depth(x)[:2], [0.74832356, 1.11229910], atol=5e-9)
        np.testing.assert_allclose(case.bed(x), [6.9522453, 3.3114298, 0], atol=5e-7)

    def test_supercritical(self):
        case = steady.MacDonaldSupercritical()
        h = case.depth(0.0)
        self.assertAlmostEqual(case.q / h / np.sqrt(g * h), 1.25, places=2)
        self.assertAlmostEqual(float(case.bed(0.0)), 34.7172442, places=6)

    def test_uniform_flow(self):
        self.assertAlmostEqual(steady.Uniform.normal_depth, 0.95947875, places=8)
        h = steady.critical_depth(2.0)
        self.assertAlmostEqual(2.0 ** 2 / (g * h ** 3), 1, places=12)


class Rain(unittest.TestCase):
    def test_time_of_concentration(self):
        self.assertAlmostEqual(rain.PLANE.time_of_concentration, 1496.247, places=3)

    def test_hydrograph(self):
        outlet = np.array([rain.PLANE.length])
        q = [rain.PLANE.discharge(outlet, t)[0] for t in (300, 600, 900, 1800, 2400, 3600)]
        np.testing.assert_allclose(q, [1.7725e-4, 5.6274e-4, 1.1061e-3, 2.58064e-3, 1.27838e-3,
                                       3.2412e-4], rtol=3e-5)


    def test_general_excess_of_rain_gives_the_same_volume(self):
        excess = rain_slopes.excess_over(None)
        for slope in (0.01, 0.5):
            plane = rain.Plane(rain_slopes.LENGTH, slope, rain_slopes.MANNING,
                               rain_slopes.INTENSITY, rain_slopes.DURATION)
            for t in (300.0, 1800.0, 3000.0):
                self.assertAlmostEqual(rain_slopes.kinematic_volume_out(slope, excess, t)
                                       / plane.volume_out(t), 1, places=4)

    def test_a_soil_holds_back_what_it_takes(self):
        # Long after the rain all that is left of it has run off, or the soil has taken the rest.
        horton = rain_slopes.SOILS["Horton"]
        taken = horton.curve(np.array([float(rain_slopes.DURATION)]))[0]
        most = (rain_slopes.INTENSITY * rain_slopes.DURATION - taken) * rain_slopes.LENGTH
        volume = rain_slopes.kinematic_volume_out(0.2, rain_slopes.excess_over(horton), 3600.0)
        self.assertLess(volume, most)
        self.assertGreater(volume, 0.9 * most)

    def test_v_shaped_catchment(self):
        hillside = catchment.HILLSIDE
        self.assertAlmostEqual(hillside.time_of_concentration, 1765.9, places=1)
        self.assertAlmostEqual(hillside.discharge(np.array([800.0]), 5400.0)[0], 0.0024, places=12)
        mesh = catchment.Catchment(20)
        self.assertAlmostEqual(mesh.areas.sum(), 1.62e6, places=3)
        self.assertEqual(len(mesh.edges_on("east")), 4)


class Shelf(unittest.TestCase):
    def test_critical_state_at_the_brink(self):
        h, q, _ = step.DryingStep().exact(np.array([10.0]), None, 4.0)
        self.assertAlmostEqual(h[0], 4 / 9 * 0.5, places=12)
        self.assertAlmostEqual(q[0], 8 / 27 * np.sqrt(g) * 0.5 ** 1.5, places=12)


class Infiltration(unittest.TestCase):
    hours = np.array([3600.0, 7200.0])

    def test_green_ampt(self):
        soil = infiltration.GreenAmpt()
        np.testing.assert_allclose(1000 * soil.curve(self.hours), [30.680517, 49.091918], atol=5e-7)
        before, after = soil.curve(np.array([545.840, 545.842]))
        self.assertAlmostEqual(before, soil.rain * 545.840, places=15)
        self.assertLess(after, soil.rain * 545.842)

    def test_horton_in_time(self):
        soil = infiltration.Horton()
        F = infiltration.horton_in_time(self.hours[0], soil.f0, soil.fc, soil.k_time)
        self.assertAlmostEqual(1000 * F, 19.507992, places=6)

    def test_horton_in_depth_solves_its_equation(self):
        soil = infiltration.Horton()
        F, d = soil.curve, 0.5
        for t in (60.0, 1000.0, 5000.0):
            rate = (F(t + d) - F(t - d)) / (2 * d)
            capacity = soil.fc + (soil.f0 - soil.fc) * np.exp(-soil.k * F(t))
            self.assertAlmostEqual(rate / capacity, 1, places=6)


class SinkingBed(unittest.TestCase):
    x = np.array([0, 25, 50, 75, 100.0])

    def test_profile(self):
        np.testing.assert_allclose(sinking_bed.depth(self.x),
                                   [1.685864, 1.517009, 1.411551, 1.335412, 1.276241], atol=5e-7)
        np.testing.assert_allclose(sinking_bed.velocity(self.x),
                                   [1.186335, 1.318383, 1.416881, 1.497665, 1.567102], atol=5e-7)
        np.testing.assert_allclose(sinking_bed.shields(self.x),
                                   [0.089585, 0.114599, 0.135579, 0.154306, 0.171518], atol=5e-7)
        np.testing.assert_allclose(sinking_bed.Bed()(self.x),
                                   [-0.277533, -0.138853, -0.064844, -0.022540, 0], atol=5e-7)

    def test_rate_of_sinking(self):
        self.assertAlmostEqual(sinking_bed.sunk(1.0), 6.6667e-6, places=10)


if __name__ == "__main__":
    unittest.main()
