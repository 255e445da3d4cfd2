"""Error norms, observed orders and what they are held against."""
import numpy as np

FACTOR = 1.25  # allowed over the norms of the plain first-order scheme at equal cell size
LOWEST_ORDER = 0.5  # Kuznetsov (1976): of a monotone first-order scheme, shocks included
DIGITS = 1e-6  # relative: errors below are those of the six digits of the snapshots


def relative_l1(difference, reference, areas):
    """Sum of |difference| over the cells, relative to that of |reference|, weighted by area."""
    return float(np.sum(np.abs(difference) * areas) / np.sum(np.abs(reference) * areas))


def observed_orders(sizes, errors):
    """Order between each mesh and the one before; None for the first, and where an error is that of
    the digits of the files."""
    orders = [None]
    for k in range(1, len(errors)):
        order = None
        if min(errors[k - 1], errors[k]) > DIGITS:
            order = float(np.log(errors[k - 1] / errors[k]) / np.log(sizes[k - 1] / sizes[k]))
        orders.append(order)
    return orders


def yardstick_at(yardstick, n):
    """The norm of the plain scheme at n cells, on the straight line through its neighbours in
    logarithms; `yardstick` maps numbers of cells to norms."""
    sizes = np.array(sorted(yardstick), float)
    logs = np.log([yardstick[size] for size in sorted(yardstick)])
    k = int(np.clip(np.searchsorted(sizes, n) - 1, 0, len(sizes) - 2))
    slope = (logs[k + 1] - logs[k]) / np.log(sizes[k + 1] / sizes[k])
    return float(np.exp(logs[k] + slope * np.log(n / sizes[k])))
