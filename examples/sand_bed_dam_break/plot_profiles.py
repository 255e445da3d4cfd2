#!/usr/bin/python3
"""Draws bed and free-surface profiles of this case at four times, and says how deep it scoured."""
import os

import matplotlib
import numpy as np

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

FOLDER = os.path.dirname(os.path.abspath(__file__))
TIMES = [0.25, 0.5, 1.0, 1.5]  # s
LAYER, DRY, BIN = 0.10, 0.001, 0.025  # m


def profile(time):
    """x, bed and free surface (not a number where dry), averaged over the width."""
    name = f"pic_{time:.2f}".replace(".", "_") + ".txt"
    table = np.loadtxt(os.path.join(FOLDER, "out", name), skiprows=1)
    column = np.floor(table[:, 0] / BIN).astype(int)
    columns = np.unique(column)
    x, bed, depth = (np.array([table[column == c, k].mean() for c in columns]) for k in (0, 2, 3))
    return x, bed, np.where(depth > DRY, bed + depth, np.nan)


def draw(axis, change_axis, time):
    """Profiles on the left; on the right the change of the bed, which the flow dwarfs."""
    x, bed, surface = profile(time)
    axis.fill_between(x, 0, bed, color="#d9b382", lw=0)
    axis.fill_between(x, bed, surface, color="#9ecae1", lw=0)
    axis.plot(x, bed, color="#7f4f1e", lw=1.2)
    axis.plot(x, surface, color="#08519c", lw=1.2)
    axis.text(0.97, 0.83, f"t = {time:g} s", ha="right", transform=axis.transAxes)
    change = 1000 * (bed - LAYER)
    change_axis.axhline(0, color="0.4", lw=0.6, ls="--")
    change_axis.fill_between(x, 0, change, color="#d9b382", lw=0)
    change_axis.plot(x, change, color="#7f4f1e", lw=1.2)
    deepest, highest = np.argmin(change), np.argmax(change)
    print(f"t = {time:g} s: scour {-change[deepest]:.1f} mm at x = {x[deepest]:.2f} m, "
          f"deposit {change[highest]:.1f} mm at x = {x[highest]:.2f} m, "
          f"front at x = {x[~np.isnan(surface)].max():.2f} m")


def main():
    figure, axes = plt.subplots(4, 2, figsize=(10, 7.5), sharex=True)
    for (left, right), time in zip(axes, TIMES):
        draw(left, right, time)
        left.set_ylim(0, 0.5)
        left.set_ylabel("z (m)")
        right.set_ylim(-6, 6)
        right.set_ylabel("bed change (mm)")
    axes[0, 0].set_title("Free surface and bed")
    axes[0, 1].set_title("Change of the bed")
    for axis in axes[-1]:
        axis.set_xlabel("distance from the gate (m)")
        axis.set_xlim(-3, 3)
    figure.tight_layout()
    figure.savefig(os.path.join(FOLDER, "profiles.png"), dpi=90)


if __name__ == "__main__":
    main()
