#include "channel_case.hpp"

#include <cmath>
#include <fstream>

#include "utils/TextBuffer.hpp"

namespace {

using utils::TextBuffer;

int node(const Channel& c, int i, int j) { return j * (c.nx + 1) + i; }
int cell(const Channel& c, int i, int j) { return 2 * (j * c.nx + i); }

double bed(double x, double y) { return 0.2 * std::sin(0.31 * x) * std::cos(0.23 * y); }

void save(const std::string& folder, const char* name, const TextBuffer& text) {
  std::ofstream(folder + "/" + name) << text.text();
}

/// Integers go through the default notation, which would shorten those above 999,999.
TextBuffer& operator<<(TextBuffer& text, int value) { return text << std::to_string(value); }

void add_edge(TextBuffer& text, int left, int right, int node1, int node2) {
  text << left << ' ' << right << ' ' << node1 << ' ' << node2 << (right < 0 ? " -5\n" : " -1\n");
}

TextBuffer nodes_of(const Channel& c) {
  TextBuffer text;
  text << (c.nx + 1) * (c.ny + 1) << '\n';
  for (int j = 0; j <= c.ny; ++j) {
    for (int i = 0; i <= c.nx; ++i) text << i << ' ' << j << ' ' << bed(i, j) << '\n';
  }
  return text;
}

/// Every square holds a lower right triangle and an upper left one.
TextBuffer cells_of(const Channel& c) {
  TextBuffer text;
  text << c.cells() << '\n';
  for (int j = 0; j < c.ny; ++j) {
    for (int i = 0; i < c.nx; ++i) {
      const int sw = node(c, i, j), se = sw + 1, nw = node(c, i, j + 1), ne = nw + 1;
      text << "3 " << sw << ' ' << se << ' ' << ne << "\n3 " << sw << ' ' << ne << ' ' << nw
           << '\n';
    }
  }
  return text;
}

TextBuffer edges_of(const Channel& c) {
  TextBuffer text;
  text << 3 * c.nx * c.ny + c.nx + c.ny << '\n';
  for (int j = 0; j < c.ny; ++j) {
    for (int i = 0; i < c.nx; ++i) {
      const int lower = cell(c, i, j), upper = lower + 1;
      const int sw = node(c, i, j), se = sw + 1, nw = node(c, i, j + 1), ne = nw + 1;
      add_edge(text, lower, upper, ne, sw);
      add_edge(text, lower, j > 0 ? cell(c, i, j - 1) + 1 : -1, sw, se);
      add_edge(text, upper, i > 0 ? cell(c, i - 1, j) : -1, nw, sw);
      if (i == c.nx - 1) add_edge(text, lower, -1, se, ne);
      if (j == c.ny - 1) add_edge(text, upper, -1, ne, nw);
    }
  }
  return text;
}

TextBuffer repeated(const Channel& c, const char* first_half, const char* second_half) {
  TextBuffer text;
  for (int j = 0; j < c.ny; ++j) {
    for (int i = 0; i < c.nx; ++i) {
      const char* const record = 2 * i < c.nx ? first_half : second_half;
      text << record << record;
    }
  }
  return text;
}

}  // namespace

Channel channel_of(int cells) {
  const int ny = static_cast<int>(std::lround(std::sqrt(cells / 8.0)));
  return {static_cast<int>(std::lround(cells / (2.0 * ny))), ny};
}

void write_channel_case(const Channel& channel, const std::string& folder, double t_end) {
  save(folder, "nodes.txt", nodes_of(channel));
  save(folder, "cells.txt", cells_of(channel));
  save(folder, "edges.txt", edges_of(channel));
  save(folder, "friction.txt", repeated(channel, "0.03\n", "0.03\n"));
  save(folder, "initial.txt", repeated(channel, "2 0 0\n", "1 0 0\n"));
  TextBuffer data;
  data << R"({"name": "dam break", "t0": 0, "tend": )" << t_end << R"(, "CFL": 0.9,
  "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
  "model": {"name": "Quillmere", "flux scheme": "LHLLC",
            "conditions": {"initial conditions": "initial.txt", "friction": "friction.txt"},
            "sources": {}},
  "output": {"folder": "", "time step enveloppe of results": 1e9}}
)";
  save(folder, "data.json", data);
}
