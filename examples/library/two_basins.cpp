// Two basins in one process: what runs out over the weir of the upper one fills the lower one.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <quillmere/simulation.hpp>

constexpr int length = 20, width = 4;  // m

/// Water between walls on squares of 1 m, cut into triangles, with a gate at x = gate_x.
quillmere::Case basin(double level, double gate_x) {
  quillmere::Case basin;
  basin.t_end = 60.0;
  const auto node = [](int i, int j) { return j * (length + 1) + i; };
  for (int j = 0; j <= width; ++j) {
    for (int i = 0; i <= length; ++i) {
      basin.x.push_back(i), basin.y.push_back(j), basin.z.push_back(0.0);
      if (i == length || j == width) continue;
      for (const int k : {node(i, j), node(i + 1, j), node(i + 1, j + 1)})
        basin.cell_nodes.push_back(k);
      for (const int k : {node(i, j), node(i + 1, j + 1), node(i, j + 1)})
        basin.cell_nodes.push_back(k);
    }
  }
  basin.level.assign(basin.cell_nodes.size() / 3, level);
  basin.edges = quillmere::edges_between(basin);
  for (quillmere::Edge& edge : basin.edges) {
    const bool is_at_gate = basin.x[edge.node1] == gate_x && basin.x[edge.node2] == gate_x;
    if (is_at_gate) edge.kind = quillmere::EdgeKind::discharge;
  }
  return basin;
}

void set_gate(quillmere::Simulation& simulation, const quillmere::Case& basin, double discharge) {
  for (std::size_t e = 0; e < basin.edges.size(); ++e) {
    if (basin.edges[e].kind == quillmere::EdgeKind::discharge)
      simulation.set_boundary(e, discharge);
  }
}

double volume(const quillmere::Simulation& simulation) {
  const auto areas = simulation.areas(), depths = simulation.read(quillmere::Field::depth);
  return std::inner_product(areas.begin(), areas.end(), depths.begin(), 0.0);
}

int main() {
  const quillmere::Case high = basin(2.0, length), low = basin(0.5, 0.0);
  quillmere::Simulation upper(high), lower(low);
  const double start = volume(upper), together = start + volume(lower);
  const int at_weir = upper.cell_at(length - 0.2, 0.4);
  constexpr double crest = 1.0, interval = 0.25;  // m, s
  while (!upper.is_complete()) {
    const double over = std::max(0.0, upper.read(quillmere::Field::depth)[at_weir] - crest);
    set_gate(upper, high, 1.7 * std::pow(over, 1.5));
    upper.run_until(upper.time() + interval);
    // What has left the one and not yet entered the other.
    const double owed = together - volume(upper) - volume(lower);
    set_gate(lower, low, -owed / (width * interval));
    lower.run_until(upper.time());
  }
  std::printf("upper %.1f m3, lower %.1f m3, together %.1f of %.1f m3 after %.0f s\n",
              volume(upper), volume(lower), volume(upper) + volume(lower), together, upper.time());
  return 0;
}
