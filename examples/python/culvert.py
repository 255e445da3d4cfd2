"""Two catchments and the culvert between them: rain falls on the upper one, collects behind an
embankment, and runs through the culvert into the lower one."""
import math

import numpy as np

import quillmere

SIZE, NX, NY = 10.0, 30, 10  # side of a square (m), squares along the valley and across it
RAIN = 40e-3 / 3600.0        # m/s
AREA, LOSSES = 1.2, 1.5      # of the culvert: m2; heads of velocity lost in it
INTERVAL = 5.0               # between two looks at the culvert, s


def catchment(bed, t_end, culvert_at):
    """Squares of two triangles over a valley, dry, between walls; the side at x = culvert_at (m) lets
    through what the culvert does, on its two middle edges. Answers the case and these edges."""
    case = quillmere.Case()
    case.t_end, case.scheme, case.zero_depth = t_end, quillmere.Scheme.HLL2, 1e-4
    j, i = np.mgrid[0:NY + 1, 0:NX + 1]
    x, y = SIZE * i.ravel(), SIZE * j.ravel()
    z = bed(x, y)
    case.x, case.y, case.z = x, y, z
    a = (np.arange(NY)[:, None] * (NX + 1) + np.arange(NX)).ravel()
    b, c, d = a + 1, a + NX + 2, a + NX + 1
    nodes = np.column_stack([a, b, c, a, c, d])
    case.cell_nodes = nodes.ravel()
    case.level = z[nodes.reshape(-1, 3)].mean(axis=1)  # that of the bed: dry
    case.manning = np.full(2 * len(a), 0.03)
    edges, culvert = quillmere.edges_between(case), []
    for number, edge in enumerate(edges):
        ends = [edge.node1, edge.node2]
        in_middle = np.all(np.abs(y[ends] - SIZE * NY / 2) <= SIZE)
        if np.all(x[ends] == culvert_at) and in_middle:
            edge.kind = quillmere.EdgeKind.discharge
            culvert.append(number)
    case.edges = edges
    return case, culvert


def valley(x, y, top):
    """Falls by 1 % along x, and towards the middle."""
    return top - 0.01 * x + 0.02 * np.abs(y - SIZE * NY / 2)


def level_at(simulation, x):
    cell = simulation.cell_at(x, SIZE * NY / 2 + 0.1)
    return simulation.read("bed_level")[cell] + simulation.read("depth")[cell]


def volume(simulation):
    return float(simulation.areas() @ simulation.read("depth"))


def advance(simulation, until, edges):
    """Steps until a time (s); what came in through edges meanwhile, m3."""
    entered = 0.0
    while simulation.time < until and not simulation.is_complete:
        start = simulation.time
        simulation.step()
        entered += sum(simulation.inflow(edge) for edge in edges) * (simulation.time - start)
    return entered


def main(t_end=3600.0):
    length = SIZE * NX
    high, outlet = catchment(lambda x, y: valley(x, y, 14.0), t_end, length)
    low, inlet = catchment(lambda x, y: valley(x, y, 10.5), t_end, 0.0)
    upper, lower = quillmere.Simulation(high), quillmere.Simulation(low)
    upper.set_rain(RAIN)
    left = passed = 0.0
    while not upper.is_complete:
        head = level_at(upper, length - 1.0) - max(level_at(lower, 1.0), 11.0)  # its floor: 11 m
        discharge = AREA * math.sqrt(2.0 * 9.81 * max(head, 0.0) / LOSSES)
        for edge in outlet:
            upper.set_boundary(edge, discharge / (SIZE * len(outlet)))
        left -= advance(upper, upper.time + INTERVAL, outlet)
        # What has left the one and not yet entered the other, in the time that the other is behind.
        rate = (left - passed) / (upper.time - lower.time)
        for edge in inlet:
            lower.set_boundary(edge, -rate / (SIZE * len(inlet)))
        passed += advance(lower, upper.time, inlet)
    rained = RAIN * float(upper.areas().sum()) * upper.time
    print(f"rain {rained:.0f} m3, behind the embankment {volume(upper):.0f} m3, through the culvert "
          f"{passed:.0f} m3, in the lower catchment {volume(lower):.0f} m3")
    return rained, volume(upper), passed, volume(lower)


if __name__ == "__main__":
    main()
