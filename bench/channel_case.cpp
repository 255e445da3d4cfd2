#include "channel_case.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>
#include <random>
#include <vector>

#include "utils/TextBuffer.hpp"

namespace {

using utils::TextBuffer;

void save(const std::string& folder, const char* name, const TextBuffer& text) {
  std::ofstream(folder + "/" + name) << text.text();
}

/// Integers go through the default notation, which would shorten those above 999,999.
TextBuffer& operator<<(TextBuffer& text, int value) { return text << std::to_string(value); }

/// Where the records of a file stand: in their natural order, or in a random one.
class Order {
 public:
  Order(int count, bool shuffled, unsigned seed) : records_(static_cast<std::size_t>(count)) {
    std::iota(records_.begin(), records_.end(), 0);
    if (shuffled) std::shuffle(records_.begin(), records_.end(), std::mt19937(seed));
    places_.resize(records_.size());
    for (std::size_t k = 0; k < records_.size(); ++k) {
      places_[static_cast<std::size_t>(records_[k])] = static_cast<int>(k);
    }
  }
  /// Natural number of the record at a place, and the reverse.
  const std::vector<int>& records() const { return records_; }
  int place(int record) const { return places_[static_cast<std::size_t>(record)]; }

 private:
  std::vector<int> records_, places_;
};

/// The files of a channel, record by record.
class Files {
 public:
  Files(const Channel& channel, ChannelKind kind)
      : c(channel),
        kind_(kind),
        nodes_((c.nx + 1) * (c.ny + 1), kind == ChannelKind::shuffled, 1),
        cells_(c.cells(), kind == ChannelKind::shuffled, 2) {}

  TextBuffer nodes() const {
    TextBuffer text;
    text << (c.nx + 1) * (c.ny + 1) << '\n';
    for (const int record : nodes_.records()) {
      const int i = record % (c.nx + 1), j = record / (c.nx + 1);
      text << i << ' ' << j << ' ' << bed(i, j) << '\n';
    }
    return text;
  }

  /// Every square holds a lower right triangle and an upper left one.
  TextBuffer cells() const {
    TextBuffer text;
    text << c.cells() << '\n';
    for (const int record : cells_.records()) {
      const int i = record / 2 % c.nx, j = record / 2 / c.nx;
      const int sw = node(i, j), ne = node(i + 1, j + 1);
      if (record % 2 == 0) {
        text << "3 " << sw << ' ' << node(i + 1, j) << ' ' << ne << '\n';
      } else {
        text << "3 " << sw << ' ' << ne << ' ' << node(i, j + 1) << '\n';
      }
    }
    return text;
  }

  TextBuffer edges() const {
    std::vector<Edge> edges;
    for (int j = 0; j < c.ny; ++j) {
      for (int i = 0; i < c.nx; ++i) add_edges_of_square(edges, i, j);
    }
    const Order order(static_cast<int>(edges.size()), kind_ == ChannelKind::shuffled, 3);
    TextBuffer text;
    text << static_cast<int>(edges.size()) << '\n';
    for (const int record : order.records()) {
      const Edge& e = edges[static_cast<std::size_t>(record)];
      text << e.left << ' ' << e.right << ' ' << e.node1 << ' ' << e.node2
           << (e.right < 0 ? " -5\n" : " -1\n");
    }
    return text;
  }

  /// One record per cell, by the place along the channel, from 0 to 1.
  template <class Record>
  TextBuffer field(Record record_at) const {
    TextBuffer text;
    for (const int record : cells_.records()) {
      text << record_at(static_cast<double>(record / 2 % c.nx) / c.nx);
    }
    return text;
  }

 private:
  struct Edge {
    int left, right, node1, node2;
  };

  int node(int i, int j) const { return nodes_.place(j * (c.nx + 1) + i); }
  int cell(int i, int j, int half) const { return cells_.place(2 * (j * c.nx + i) + half); }

  void add_edges_of_square(std::vector<Edge>& edges, int i, int j) const {
    const int lower = cell(i, j, 0), upper = cell(i, j, 1);
    const int sw = node(i, j), se = node(i + 1, j), nw = node(i, j + 1), ne = node(i + 1, j + 1);
    edges.push_back({lower, upper, ne, sw});
    edges.push_back({lower, j > 0 ? cell(i, j - 1, 1) : -1, sw, se});
    edges.push_back({upper, i > 0 ? cell(i - 1, j, 0) : -1, nw, sw});
    if (i == c.nx - 1) edges.push_back({lower, -1, se, ne});
    if (j == c.ny - 1) edges.push_back({upper, -1, ne, nw});
  }

  static double bed(double x, double y) { return 0.2 * std::sin(0.31 * x) * std::cos(0.23 * y); }

  const Channel c;
  ChannelKind kind_;
  Order nodes_, cells_;
};

/// Free-surface level and discharges of a cell by its place along the channel.
const char* initial_record(ChannelKind kind, double place) {
  switch (kind) {
    case ChannelKind::dry:
      return place < 0.05 ? "2 0 0\n" : place < 0.1 ? "1 0 0\n" : "-5 0 0\n";
    case ChannelKind::wet:
    case ChannelKind::shuffled:
    case ChannelKind::sources:
      return place < 0.5 ? "2 0 0\n" : "1 0 0\n";
    case ChannelKind::sediment:
      return place < 0.5 ? "2.5 0 0\n" : "1.5 0 0\n";
  }
  return "";
}

TextBuffer data_file(ChannelKind kind, const std::string& scheme, double t_end) {
  const bool has_sediment = kind == ChannelKind::sediment;
  const bool has_sources = kind == ChannelKind::sources;
  TextBuffer data;
  data << R"({"name": "dam break", "t0": 0, "tend": )" << t_end << R"(, "CFL": 0.9,
  "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
  "model": {"name": ")"
       << (has_sediment ? "Bramsett" : "Quillmere") << R"(", "flux scheme": ")" << scheme << R"(",
            "conditions": {"initial conditions": "initial.txt", "friction": "friction.txt")"
       << (has_sediment ? R"(, "initial sediments level": "sand.txt")" : "") << R"(},
            "sources": {)"
       << (has_sources ? R"("rainfall": "rain.txt", "hyetocells": "rain_cells.txt",
            "infiltration": "soils.txt", "infiltracells": "soil_cells.txt")"
                       : "")
       << "}"
       << (has_sediment ? R"(, "parameters": {"sediments mean grain diameter": 0.001,
            "sediments density": 2.65, "sediments friction coefficient": 0.03,
            "sediments porosity": 0.4})"
                        : "")
       << R"(},
  "output": {"folder": "", "time step enveloppe of results": 1e9}}
)";
  return data;
}

}  // namespace

Channel channel_of(int cells) {
  const int ny = static_cast<int>(std::lround(std::sqrt(cells / 8.0)));
  return {static_cast<int>(std::lround(cells / (2.0 * ny))), ny};
}

void write_channel_case(const Channel& channel, ChannelKind kind, const std::string& scheme,
                        const std::string& folder, double t_end) {
  const Files files(channel, kind);
  save(folder, "nodes.txt", files.nodes());
  save(folder, "cells.txt", files.cells());
  save(folder, "edges.txt", files.edges());
  save(folder, "friction.txt", files.field([](double) { return "0.03\n"; }));
  save(folder, "initial.txt",
       files.field([kind](double place) { return initial_record(kind, place); }));
  if (kind == ChannelKind::sediment) {
    save(folder, "sand.txt", files.field([](double) { return "0.5\n"; }));
  }
  if (kind == ChannelKind::sources) {
    const auto first_half = [](double place) { return place < 0.5 ? "1\n" : "2\n"; };
    save(folder, "rain.txt", TextBuffer() << "2\n1 2 1\n0 1e-5\n5 2e-5\n2 1 1\n0 5e-6\n");
    save(folder, "soils.txt",
         TextBuffer() << "2\n1 GreenAmpt 3e-5 0.11 0.2 0.45 0.02 1e-3\n2 Horton 1e-4 1e-5 20 0.01 0\n");
    save(folder, "rain_cells.txt", files.field(first_half));
    save(folder, "soil_cells.txt", files.field(first_half));
  }
  save(folder, "data.json", data_file(kind, scheme, t_end));
}
