"""A simulation behind the Basic Model Interface (BMI 2.0) of the CSDMS, so that frameworks of coupled
models can drive it: Hutton, Piper and Tucker (2020), J. Open Source Softw. 5(51), 2317.

Grid 0 is the mesh of the case: cells are its faces. Values are copied in and out; a value has no
address of its own, so that `get_value_ptr` is refused."""
import numpy as np

import quillmere

try:
    from bmipy import Bmi
except ImportError:  # the interface asks for the functions, not for the class
    Bmi = object

GRID = 0
DEPTH = "land_surface_water__depth"
LEVEL = "land_surface_water_surface__elevation"
BED = "land_surface__elevation"
FLOW_X = "land_surface_water_flow__x_component_of_unit_discharge"
FLOW_Y = "land_surface_water_flow__y_component_of_unit_discharge"
LARGEST_DEPTH = "land_surface_water__max_of_depth"
INFILTRATED = "soil_water__infiltrated_depth"
RAIN = "atmosphere_water__rainfall_volume_flux"
BOUNDARY = "land_surface_water_boundary__imposed_value"
INFLOW = "land_surface_water_boundary__volume_inflow_rate"

FIELDS = {DEPTH: "depth", BED: "bed_level", FLOW_X: "discharge_x", FLOW_Y: "discharge_y",
          LARGEST_DEPTH: "largest_depth", INFILTRATED: "infiltrated_depth"}
UNITS = {DEPTH: "m", LEVEL: "m", BED: "m", FLOW_X: "m2 s-1", FLOW_Y: "m2 s-1", LARGEST_DEPTH: "m",
         INFILTRATED: "m", RAIN: "m s-1", BOUNDARY: "m2 s-1 or m", INFLOW: "m3 s-1"}
INPUTS = (RAIN, BOUNDARY, DEPTH)
OUTPUTS = (DEPTH, LEVEL, BED, FLOW_X, FLOW_Y, LARGEST_DEPTH, INFILTRATED, INFLOW)
ON_EDGES = (BOUNDARY, INFLOW)
IMPOSING = tuple(int(kind) for kind in (
    quillmere.EdgeKind.discharge, quillmere.EdgeKind.water_level, quillmere.EdgeKind.hydrograph,
    quillmere.EdgeKind.limnigraph))


class BmiQuillmere(Bmi):
    """`initialize` takes the name of a data file. Rain stays as it is set; of BOUNDARY, NaN stands
    where an edge imposes nothing that was set here: m2/s (positive leaves) or m."""

    def initialize(self, config_file):
        self._simulation = quillmere.Simulation.open(str(config_file))
        self._mesh = self._simulation.mesh()
        self._rain = np.full(self._simulation.number_of_cells, np.nan)
        self._imposed = np.full(self._simulation.number_of_edges, np.nan)
        self._boundaries = np.flatnonzero(self._mesh.kind != int(quillmere.EdgeKind.interior))

    def update(self):
        self._simulation.step()

    def update_until(self, time):
        """No step is shortened: the time may be passed by a part of one."""
        self._simulation.run_until(time)

    def finalize(self):
        self._simulation = self._mesh = None

    def get_component_name(self):
        return "Quillmere"

    def get_input_item_count(self):
        return len(INPUTS)

    def get_output_item_count(self):
        return len(OUTPUTS)

    def get_input_var_names(self):
        return INPUTS

    def get_output_var_names(self):
        return OUTPUTS

    # Variables.

    def get_var_grid(self, name):
        self._check(name)
        return GRID

    def get_var_type(self, name):
        self._check(name)
        return "float64"

    def get_var_units(self, name):
        self._check(name)
        return UNITS[name]

    def get_var_itemsize(self, name):
        self._check(name)
        return 8

    def get_var_nbytes(self, name):
        return 8 * self._count(name)

    def get_var_location(self, name):
        self._check(name)
        return "edge" if name in ON_EDGES else "face"

    # Time.

    def get_current_time(self):
        return self._simulation.time

    def get_start_time(self):
        return self._simulation.start_time

    def get_end_time(self):
        return self._simulation.end_time

    def get_time_units(self):
        return "s"

    def get_time_step(self):
        return self._simulation.time_step

    # Values.

    def get_value(self, name, dest):
        dest[:] = self._values(name)
        return dest

    def get_value_ptr(self, name):
        raise NotImplementedError("Values are kept in an order of their own: use get_value.")

    def get_value_at_indices(self, name, dest, inds):
        dest[:] = self._values(name)[inds]
        return dest

    def set_value(self, name, src):
        self._set(name, np.arange(self._count(name)), src)

    def set_value_at_indices(self, name, inds, src):
        self._set(name, np.asarray(inds), src)

    # The grid.

    def get_grid_rank(self, grid):
        return 2

    def get_grid_size(self, grid):
        return self.get_grid_node_count(grid)

    def get_grid_type(self, grid):
        return "unstructured"

    def get_grid_shape(self, grid, shape):
        raise NotImplementedError("An unstructured grid has no shape.")

    def get_grid_spacing(self, grid, spacing):
        raise NotImplementedError("An unstructured grid has no spacing.")

    def get_grid_origin(self, grid, origin):
        raise NotImplementedError("An unstructured grid has no origin.")

    def get_grid_x(self, grid, x):
        x[:] = self._mesh.x
        return x

    def get_grid_y(self, grid, y):
        y[:] = self._mesh.y
        return y

    def get_grid_z(self, grid, z):
        z[:] = self._mesh.z
        return z

    def get_grid_node_count(self, grid):
        return len(self._mesh.x)

    def get_grid_edge_count(self, grid):
        return self._simulation.number_of_edges

    def get_grid_face_count(self, grid):
        return self._simulation.number_of_cells

    def get_grid_edge_nodes(self, grid, edge_nodes):
        edge_nodes[0::2], edge_nodes[1::2] = self._mesh.node1, self._mesh.node2
        return edge_nodes

    def get_grid_face_nodes(self, grid, face_nodes):
        face_nodes[:] = self._mesh.cell_nodes
        return face_nodes

    def get_grid_nodes_per_face(self, grid, nodes_per_face):
        nodes_per_face[:] = np.diff(self._mesh.first_node)
        return nodes_per_face

    def get_grid_face_edges(self, grid, face_edges):
        """The k-th edge of a face follows its k-th node."""
        of_nodes = {frozenset(pair): edge for edge, pair in
                    enumerate(zip(self._mesh.node1.tolist(), self._mesh.node2.tolist()))}
        nodes, first = self._mesh.cell_nodes.tolist(), self._mesh.first_node.tolist()
        for begin, end in zip(first, first[1:]):
            for k in range(begin, end):
                following = nodes[k + 1] if k + 1 < end else nodes[begin]
                face_edges[k] = of_nodes[frozenset((nodes[k], following))]
        return face_edges

    # Inside.

    def _check(self, name):
        if name not in UNITS:
            raise KeyError(f"Found the variable {name}, expected one of {', '.join(UNITS)}.")

    def _count(self, name):
        self._check(name)
        simulation = self._simulation
        return simulation.number_of_edges if name in ON_EDGES else simulation.number_of_cells

    def _values(self, name):
        self._check(name)
        if name in FIELDS:
            return self._simulation.read(FIELDS[name])
        if name == LEVEL:
            return self._simulation.read("bed_level") + self._simulation.read("depth")
        if name == INFLOW:
            rates = np.zeros(self._simulation.number_of_edges)
            rates[self._boundaries] = [self._simulation.inflow(e) for e in self._boundaries]
            return rates
        return self._rain if name == RAIN else self._imposed

    def _set(self, name, places, values):
        self._check(name)
        if name not in INPUTS:
            raise KeyError(f"{name} cannot be set; {', '.join(INPUTS)} can.")
        values = np.broadcast_to(np.asarray(values, dtype=float), places.shape)
        if name == DEPTH:
            self._simulation.set_depth(values, places)
        elif name == RAIN:
            self._simulation.set_rain(values, places)
            self._rain[places] = values
        else:
            for edge, value in zip(places, values):
                if not np.isnan(value):
                    self._simulation.set_boundary(edge, value)
            self._imposed[places] = values
