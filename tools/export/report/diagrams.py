"""Curves of what is imposed on a case, and of the steps of its run."""
import matplotlib.pyplot as plt
import numpy as np

from drawing.curves import CURVE_COLOURS, time_axis
from drawing.pictures import plain_text, save

DPI = 100  # of which curves have no need
SIZE = (8.4, 2.7)


def new_diagram():
    figure, axes = plt.subplots(figsize=SIZE, layout="constrained")
    axes.grid(color="0.9")
    axes.set_axisbelow(True)
    axes.spines[["top", "right"]].set_visible(False)
    return figure, axes


def draw_imposed(boundary, series, model, picture):
    """The discharge (m³/s, positive into the mesh) or the levels of a boundary over the run."""
    times = times_of_run([time for part in boundary["parts"] if isinstance(part["imposed"], str)
                          for time in series[part["imposed"]]["times"]], model)

    def values_of(part):
        if not isinstance(part["imposed"], str):
            return np.full(len(times), part["imposed"])
        return value_at(times, series[part["imposed"]])

    shown, label = time_axis(times)
    figure, axes = new_diagram()
    if boundary["imposes"] == "discharge":
        total = -sum(values_of(part) * part["length"] for part in boundary["parts"])
        axes.plot(shown, total, color=CURVE_COLOURS[0], linewidth=1.6)
        axes.set(ylabel="discharge (m³/s)")
    else:
        for part in boundary["parts"]:
            axes.plot(shown, values_of(part), color=CURVE_COLOURS[0], linewidth=1.6)
        axes.set(ylabel="water level (m)")
    axes.ticklabel_format(axis="y", useOffset=False)
    axes.set(xlabel=label)
    axes.margins(x=0)
    save(figure, picture, DPI)


def times_of_run(times, model):
    """Start and end of the run, and those of some times that lie between, in order and once each."""
    ends = model["t_start"], model["t_end"]
    return np.array(sorted({*ends, *(time for time in times if ends[0] < time < ends[1])}))


def value_at(times, series):
    """As the simulator takes it: linear, on from the first interval before it, the last value after."""
    known, values = np.array(series["times"]), np.array(series["values"])
    slope = (values[1] - values[0]) / (known[1] - known[0])
    return np.where(times < known[0], values[0] + slope * (times - known[0]),
                    np.interp(times, known, values))


def draw_rain(hyetograms, model, picture):
    """Intensities over the run, which hold from one time to the next."""
    figure, axes = new_diagram()
    for k, hyetogram in enumerate(hyetograms):
        times = times_of_run(hyetogram["times"], model)
        shown, label = time_axis(times)
        axes.step(shown, intensities_at(times, hyetogram) * 3.6e6, where="post", linewidth=1.6,
                  color=CURVE_COLOURS[k % len(CURVE_COLOURS)],
                  label=f"hyetogram {hyetogram['id']}")
    axes.set(xlabel=label, ylabel="intensity (mm/h)", ylim=(0, None))
    axes.margins(x=0)
    axes.legend(loc="center left", bbox_to_anchor=(1, 0.5), frameon=False)
    save(figure, picture, DPI)


def intensities_at(times, hyetogram):
    """As the simulator takes them: of the intervals that have started, the last in the list; the first
    of all before any."""
    started = np.array(hyetogram["times"]) <= times[:, None]
    started[:, 0] = True
    last = started.shape[1] - 1 - np.argmax(started[:, ::-1], axis=1)
    return np.array(hyetogram["intensities"])[last]


def draw_course(begins, smallest, largest, end, picture):
    """Between which steps a run went, span by span, up to an end (s)."""
    edges, label = time_axis(np.array([*begins, end]))
    figure, axes = new_diagram()
    axes.stairs(largest, edges, baseline=smallest, fill=True, color=CURVE_COLOURS[0], alpha=0.35)
    axes.stairs(smallest, edges, baseline=None, color=CURVE_COLOURS[0], linewidth=1.2)
    axes.set(xlabel=label, ylabel="time step (s)", yscale="log")
    axes.margins(x=0)
    save(figure, picture, DPI)


def draw_last_steps(times, steps, picture):
    """The steps before a run failed."""
    figure, axes = new_diagram()
    axes.plot(times, steps, ".-", color=CURVE_COLOURS[1])
    axes.set(xlabel="time (s)", ylabel="time step (s)", yscale="log")
    save(figure, picture, DPI)


def draw_shares(names, shares, picture):
    """Horizontal bars of shares of a whole, the largest above."""
    figure, axes = plt.subplots(figsize=(8.4, 0.7 + 0.24 * len(names)), layout="constrained")
    axes.barh(range(len(names)), 100 * np.array(shares), height=0.7, color=CURVE_COLOURS[0])
    axes.set_yticks(range(len(names)), [plain_text(name) for name in names])
    axes.invert_yaxis()
    axes.set(xlabel="share of the time steps (%)")
    axes.spines[["top", "right"]].set_visible(False)
    save(figure, picture, DPI)
