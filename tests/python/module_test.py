"""The module steps a case as the program does, and hands columns over as arrays."""
import os
import subprocess
import tempfile
import unittest

import numpy as np

import quillmere
from tests.python import pool

PROGRAM = os.environ["QUILLMERE_PROGRAM"]


class Simulations(unittest.TestCase):
    def test_the_steps_are_those_of_the_program(self):
        with tempfile.TemporaryDirectory() as folder:
            pool.write_files(folder, t_end=2.0, snapshots=[1.0])
            subprocess.run([PROGRAM, "-f", "data.json", "-nodisplay"], cwd=folder, check=True,
                           stdout=subprocess.DEVNULL)
            table = np.loadtxt(os.path.join(folder, "out", "pic_1_00.txt"), skiprows=1)
            simulation = pool.open_in(folder)
            simulation.run_until(1.0 - 1e-8)
            self.assertGreater(np.ptp(table[:, 3]), 0.1)
            for column, name in ((3, "depth"), (4, "discharge_x"), (5, "discharge_y")):
                np.testing.assert_allclose(simulation.read(name), table[:, column], rtol=1e-5,
                                           atol=1e-9)

    def test_a_column_is_read_into_the_array_that_is_given(self):
        simulation = quillmere.Simulation(pool.case())
        out = np.empty(simulation.number_of_cells)
        self.assertIs(simulation.read("depth", out), out)
        np.testing.assert_array_equal(out, simulation.read("depth"))
        self.assertEqual(out[0], 1.0)
        for wrong in (np.empty(3), np.empty((2, 2))):
            with self.assertRaises(quillmere.Error):
                simulation.read("depth", wrong)
        with self.assertRaises(TypeError):  # it would be filled and thrown away
            simulation.read("depth", np.empty(simulation.number_of_cells, dtype=np.float32))

    def test_every_field_has_a_value_for_every_cell(self):
        simulation = quillmere.Simulation(pool.case())
        with self.assertRaisesRegex(quillmere.Error, "keep_maxima"):
            simulation.read("peak_depth")
        simulation.keep_maxima(0.5)
        self.assertEqual(len(quillmere.fields), 16)
        for name in quillmere.fields:
            self.assertEqual(simulation.read(name).shape, (simulation.number_of_cells,))
        with self.assertRaisesRegex(quillmere.Error, 'Found the field "wind", expected one of depth'):
            simulation.read("wind")

    def test_maxima_hold_from_the_start_to_the_present(self):
        simulation = quillmere.Simulation(pool.wave())
        start = simulation.read("depth")
        simulation.keep_maxima(1.2)
        simulation.run_until(2.0)
        peak, arrival = simulation.read("peak_depth"), simulation.read("arrival_time")
        self.assertTrue(np.all(peak >= np.maximum(start, simulation.read("depth"))))
        np.testing.assert_array_equal(arrival[start > 1.2], 0.0)
        np.testing.assert_array_equal(np.isnan(arrival), peak <= 1.2)
        self.assertTrue(np.any(arrival > 0.0))

    def test_rain_fills_what_it_falls_on(self):
        simulation = quillmere.Simulation(pool.case())
        start = simulation.areas() @ simulation.read("depth")
        simulation.set_rain(1e-3)
        simulation.run_until(5.0)
        gain = simulation.areas() @ simulation.read("depth") - start
        self.assertAlmostEqual(gain, 1e-3 * simulation.time * simulation.areas().sum(), 9)
        simulation.set_rain(np.zeros(simulation.number_of_cells))
        before = simulation.areas() @ simulation.read("depth")
        simulation.run_until(8.0)
        self.assertAlmostEqual(simulation.areas() @ simulation.read("depth"), before, 9)
        simulation.set_rain(1e-3, cells=[0])
        simulation.run_until(9.0)
        self.assertGreater(simulation.areas() @ simulation.read("depth"), before)

    def test_water_and_boundaries_are_set(self):
        case, gate = pool.with_gate()
        simulation = quillmere.Simulation(case)
        simulation.set_depth([2.0, 2.0], cells=[0, 1])
        np.testing.assert_array_equal(simulation.read("depth")[:3], [2.0, 2.0, 1.0])
        simulation.set_discharges([0.5], [0.25], cells=[2])
        self.assertEqual(simulation.read("discharge_x")[2], 0.5)
        self.assertEqual(simulation.read("discharge_y")[2], 0.25)
        for edge in gate:
            simulation.set_boundary(edge, -0.1)
        simulation.step()
        self.assertAlmostEqual(sum(simulation.inflow(edge) for edge in gate), 0.1 * len(gate), 12)

    def test_a_state_goes_into_another_simulation(self):
        first, second = (quillmere.Simulation(pool.wave(), threads=n) for n in (1, 2))
        first.run_until(1.0)
        second.load(first.save())
        self.assertEqual(second.time, first.time)
        for simulation in (first, second):
            simulation.run_until(2.0)
        np.testing.assert_array_equal(first.read("discharge_x"), second.read("discharge_x"))
        with self.assertRaises(quillmere.Error):
            first.load(b"nothing")

    def test_a_mesh_is_that_of_its_case(self):
        case = pool.case()
        mesh = quillmere.Simulation(case).mesh()
        np.testing.assert_array_equal(mesh.x, case.x)
        np.testing.assert_array_equal(mesh.cell_nodes, case.cell_nodes)
        np.testing.assert_array_equal(np.diff(mesh.first_node), 3)
        np.testing.assert_array_equal(mesh.left, [edge.left for edge in case.edges])
        np.testing.assert_array_equal(mesh.kind, [int(edge.kind) for edge in case.edges])

    def test_what_is_wrong_is_an_error(self):
        with self.assertRaisesRegex(quillmere.Error, "nowhere.json"):
            quillmere.Simulation.open("nowhere.json")
        simulation = quillmere.Simulation(pool.case())
        with self.assertRaises(quillmere.Error):
            simulation.run_until(float("nan"))
        with self.assertRaises(quillmere.Error):
            simulation.set_depth([-1.0], cells=[0])

    def test_a_run_ends_at_its_end(self):
        simulation = quillmere.Simulation(pool.case(t_end=0.5))
        simulation.run_until(10.0)
        self.assertTrue(simulation.is_complete)
        self.assertGreaterEqual(simulation.time, simulation.end_time)
        self.assertGreater(simulation.steps, 1)
        self.assertEqual(simulation.take_warnings(), [])
        with self.assertRaises(quillmere.Error):
            simulation.step()


if __name__ == "__main__":
    unittest.main()
