"""The Basic Model Interface: its functions, driven as a framework drives them."""
import tempfile
import unittest

import numpy as np

import quillmere
from quillmere import bmi
from tests.python import pool

# The functions of BMI 2.0.
FUNCTIONS = """initialize update update_until finalize get_component_name get_input_item_count
get_output_item_count get_input_var_names get_output_var_names get_var_grid get_var_type get_var_units
get_var_itemsize get_var_nbytes get_var_location get_current_time get_start_time get_end_time
get_time_units get_time_step get_value get_value_ptr get_value_at_indices set_value
set_value_at_indices get_grid_rank get_grid_size get_grid_type get_grid_shape get_grid_spacing
get_grid_origin get_grid_x get_grid_y get_grid_z get_grid_node_count get_grid_edge_count
get_grid_face_count get_grid_edge_nodes get_grid_face_edges get_grid_face_nodes
get_grid_nodes_per_face""".split()


class BasicModelInterface(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        pool.write_files(self.folder.name, t_end=5.0)
        self.model = bmi.BmiQuillmere()

        def initialize(data_file):
            self.model.initialize(data_file)

        pool.open_in(self.folder.name, initialize)

    def value(self, name):
        count = self.model.get_var_nbytes(name) // self.model.get_var_itemsize(name)
        return self.model.get_value(name, np.empty(count, self.model.get_var_type(name)))

    def test_every_function_is_there(self):
        for name in FUNCTIONS:
            self.assertTrue(callable(getattr(self.model, name)), name)

    def test_every_variable_is_described_and_has_values(self):
        names = self.model.get_input_var_names() + self.model.get_output_var_names()
        self.assertEqual(self.model.get_input_item_count(), len(self.model.get_input_var_names()))
        self.assertEqual(self.model.get_output_item_count(), len(self.model.get_output_var_names()))
        counts = {"face": self.model.get_grid_face_count(0), "edge": self.model.get_grid_edge_count(0)}
        for name in names:
            grid = self.model.get_var_grid(name)
            self.assertEqual(self.model.get_grid_type(grid), "unstructured")
            self.assertTrue(self.model.get_var_units(name))
            self.assertEqual(len(self.value(name)), counts[self.model.get_var_location(name)])
        with self.assertRaisesRegex(KeyError, "Found the variable wind"):
            self.model.get_var_units("wind")

    def test_time_runs_from_start_to_end(self):
        self.assertEqual(self.model.get_start_time(), 0.0)
        self.assertEqual(self.model.get_end_time(), 5.0)
        self.assertEqual(self.model.get_current_time(), 0.0)
        step = self.model.get_time_step()
        self.model.update()
        self.assertGreaterEqual(self.model.get_current_time(), 0.9 * step)
        self.model.update_until(2.0)
        self.assertGreaterEqual(self.model.get_current_time(), 2.0)
        self.assertLess(self.model.get_current_time(), 2.0 + 2 * step)
        self.model.finalize()

    def test_the_grid_is_the_mesh(self):
        faces, edges = self.model.get_grid_face_count(0), self.model.get_grid_edge_count(0)
        nodes = self.model.get_grid_node_count(0)
        self.assertEqual((faces, nodes), (2 * pool.NX * pool.NY, (pool.NX + 1) * (pool.NY + 1)))
        self.assertEqual(faces + nodes - edges, 1)  # Euler
        x, y = (get(0, np.empty(nodes)) for get in (self.model.get_grid_x, self.model.get_grid_y))
        self.assertEqual((x.max(), y.max()), (pool.NX, pool.NY))
        per_face = self.model.get_grid_nodes_per_face(0, np.empty(faces, int))
        self.assertTrue(np.all(per_face == 3))
        of_faces = self.model.get_grid_face_nodes(0, np.empty(3 * faces, int)).reshape(-1, 3)
        of_edges = self.model.get_grid_edge_nodes(0, np.empty(2 * edges, int)).reshape(-1, 2)
        edge_of = self.model.get_grid_face_edges(0, np.empty(3 * faces, int)).reshape(-1, 3)
        for face in range(faces):
            for k in range(3):
                ends = {of_faces[face, k], of_faces[face, (k + 1) % 3]}
                self.assertEqual(set(of_edges[edge_of[face, k]]), ends)

    def test_rain_and_depth_are_set(self):
        rain = np.full(self.model.get_grid_face_count(0), 1e-3)
        self.model.set_value(bmi.RAIN, rain)
        np.testing.assert_array_equal(self.value(bmi.RAIN), rain)
        before = self.value(bmi.DEPTH).mean()
        self.model.update_until(1.0)
        self.assertAlmostEqual(self.value(bmi.DEPTH).mean() - before,
                               1e-3 * self.model.get_current_time(), 9)
        self.model.set_value_at_indices(bmi.DEPTH, [3, 5], [0.7, 0.8])
        places = self.model.get_value_at_indices(bmi.DEPTH, np.empty(2), [5, 3])
        np.testing.assert_array_equal(places, [0.8, 0.7])
        np.testing.assert_array_equal(self.value(bmi.LEVEL),
                                      self.value(bmi.BED) + self.value(bmi.DEPTH))

    def test_boundaries_are_set(self):
        gate = np.array(pool.with_gate()[1])
        self.assertTrue(np.all(np.isnan(self.value(bmi.BOUNDARY))))
        self.model.set_value_at_indices(bmi.BOUNDARY, gate, np.full(len(gate), -0.1))
        self.model.update()
        inflow = self.value(bmi.INFLOW)
        np.testing.assert_allclose(inflow[gate], 0.1)
        self.assertAlmostEqual(inflow.sum(), 0.1 * len(gate), 12)
        self.model.set_value(bmi.BOUNDARY, self.value(bmi.BOUNDARY))  # what is NaN stays
        self.model.update()

    def test_what_cannot_be_set_is_refused(self):
        with self.assertRaisesRegex(KeyError, "cannot be set"):
            self.model.set_value(bmi.LEVEL, np.zeros(self.model.get_grid_face_count(0)))
        with self.assertRaises(quillmere.Error):
            self.model.set_value_at_indices(bmi.RAIN, [0], [-1.0])
        with self.assertRaises(NotImplementedError):
            self.model.get_value_ptr(bmi.DEPTH)


if __name__ == "__main__":
    unittest.main()
