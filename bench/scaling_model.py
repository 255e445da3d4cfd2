"""How long a step takes on many ranks, by what was measured on few and what is assumed of a network."""
import math

# Assumptions: one rank per core, a network as clusters have them, and halos as the curve cuts them.
LATENCY = 2e-6  # s, of a message
PER_MESSAGE = 0.3e-6  # s that a core spends on each end of a message
BANDWIDTH = 25e9  # bytes/s of a rank
NEIGHBOURS = 6
GHOSTS = 4.6  # times the square root of the cells of a rank, for the worst rank
BYTES_PER_GHOST = 24
PACKING = 3e-9  # s per ghost, both ends
REDUCTION = 0.8e-6  # s times log2 of the ranks
PATCHES_AT_BORDER = 5.2  # times the square root of cells times cells of a patch, in cells

ASSUMPTIONS = [
    ["latency of a message", f"{LATENCY * 1e6:.1f} µs"],
    ["time of a core for an end of a message", f"{PER_MESSAGE * 1e6:.1f} µs"],
    ["bandwidth of a rank", f"{BANDWIDTH * 1e-9:.0f} GB/s"],
    ["neighbours", str(NEIGHBOURS)],
    ["ghosts of n cells", f"{GHOSTS} √n, {BYTES_PER_GHOST} bytes each"],
    ["to pack and unpack a ghost", f"{PACKING * 1e9:.0f} ns"],
    ["a reduction over P ranks", f"{REDUCTION * 1e6:.1f} µs · log2 P, not hidden"],
]


class Model:
    def __init__(self, per_cell, per_step, neighbours=NEIGHBOURS):
        """Seconds of a cell and step, and of a step of a rank besides."""
        self.per_cell = per_cell
        self.per_step = per_step
        self.neighbours = neighbours

    def with_neighbours(self, neighbours):
        return Model(self.per_cell, self.per_step, neighbours)

    def step(self, cells, ranks):
        """Seconds of a step of so many cells on so many ranks."""
        n = cells / ranks
        compute = self.per_step + self.per_cell * n
        if ranks == 1:
            return compute
        ghosts = GHOSTS * math.sqrt(n)
        patch = min(4096, max(256, n / 32))
        interior = max(0.0, n - PATCHES_AT_BORDER * math.sqrt(n * patch))
        on_the_way = LATENCY + ghosts * BYTES_PER_GHOST / BANDWIDTH
        return (compute + 2 * self.neighbours * PER_MESSAGE + ghosts * PACKING +
                max(0.0, on_the_way - self.per_cell * interior) + REDUCTION * math.log2(ranks))

    def efficiency(self, cells, ranks):
        """Of the ranks, over one that has as many cells."""
        return (self.per_step + self.per_cell * cells / ranks) / self.step(cells, ranks)

    def strong_efficiency(self, cells, ranks):
        """Of the ranks, over one that has all cells."""
        return self.step(cells, 1) / (ranks * self.step(cells, ranks))

    def most_ranks(self, cells, efficiency):
        """As many, a power of two, as still have that efficiency on so many cells."""
        ranks = 1
        while cells / (2 * ranks) >= 1 and self.strong_efficiency(cells, 2 * ranks) >= efficiency:
            ranks *= 2
        return ranks

    def fewest_cells(self, ranks, efficiency):
        """Of a rank, so that ranks have that efficiency; to two digits."""
        cells = 10.0
        while self.efficiency(cells * ranks, ranks) < efficiency:
            cells *= 1.05
        digits = 10 ** (math.floor(math.log10(cells)) - 1)
        return math.ceil(cells / digits) * digits
