"""The meshes of the cases are what the simulator's manual asks for."""
import unittest

import numpy as np

from validation import meshes


class Meshes(unittest.TestCase):
    kinds = ("structured", "irregular", "rotated")

    def test_triangles_fill_the_rectangle(self):
        for kind in self.kinds:
            mesh = meshes.Rectangle(6.0, 3.0, 12, 6, kind)
            self.assertEqual(len(mesh.cells), 2 * 12 * 6)
            self.assertAlmostEqual(mesh.areas.sum(), 18.0)
            self.assertGreater(mesh.areas.min(), 0.1 * mesh.areas.mean())

    def test_normals_point_out_of_the_left_cell(self):
        for kind in self.kinds:
            mesh = meshes.square(4.0, 8, kind)
            mesh.z = np.hypot(*mesh.xy.T)
            mesh.order_cells_of_edges("lower")
            turned = mesh.turned()
            along = turned.xy[mesh.node2] - turned.xy[mesh.node1]
            outward = turned.edge_midpoints() - turned.centres()[mesh.left]
            self.assertTrue(np.all(along[:, 1] * outward[:, 0] - along[:, 0] * outward[:, 1] > 0))

    def test_edges_name_first_the_cell_that_is_asked_for(self):
        for first, sign in (("lower", 1), ("higher", -1)):
            mesh = meshes.square(4.0, 8, "irregular")
            mesh.z = np.hypot(*mesh.xy.T)
            mesh.order_cells_of_edges(first)
            inside = ~mesh.is_boundary()
            rise = (mesh.bed()[mesh.right] - mesh.bed()[mesh.left])[inside]
            self.assertTrue(np.all(sign * rise >= 0))
            self.assertGreater(np.abs(rise).max(), 0)

    def test_nodes_of_a_line_that_is_kept_stay_on_it(self):
        mesh = meshes.strip(20.0, 20, "irregular", kept=10.0)
        self.assertEqual(int((np.abs(mesh.xy[:, 0] - 10.0) < 1e-12).sum()), 5)
        free = meshes.strip(20.0, 20, "irregular")
        self.assertEqual(int((np.abs(free.xy[:, 0] - 10.0) < 1e-12).sum()), 2)

    def test_every_border_edge_lies_on_a_side(self):
        mesh = meshes.Rectangle(6.0, 3.0, 12, 6, "irregular")
        on_sides = [len(mesh.edges_on(side)) for side in meshes.SIDES]
        self.assertEqual(on_sides, [6, 6, 12, 12])
        self.assertEqual(sum(on_sides), mesh.is_boundary().sum())

    def test_rotation_keeps_the_lengths_and_turns_by_37_degrees(self):
        mesh = meshes.square(4.0, 3, "rotated")
        turned = mesh.turned().xy
        np.testing.assert_allclose(np.hypot(*turned.T), np.hypot(*mesh.xy.T))
        far = np.argmax(mesh.xy[:, 0] - mesh.xy[:, 1])  # the corner (4, 0)
        self.assertAlmostEqual(np.degrees(np.arctan2(*turned[far][::-1])), 37.0)


if __name__ == "__main__":
    unittest.main()
