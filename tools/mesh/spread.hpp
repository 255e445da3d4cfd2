// How the discharge of a whole boundary is spread over its edges.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "mesh/case_writer.hpp"

namespace mesh_import {

/// By the conveyance of the water along the boundary: of the initial water without a level.
struct SpreadRequest {
  std::string name;             // of the boundary
  bool is_even = false;         // the same for every metre instead
  std::optional<double> level;  // m
};

/// What is asked for on named boundary lines.
struct BoundaryRequests {
  std::vector<BoundaryRequest> conditions;
  std::vector<SpreadRequest> spreads;
};

/// Reads "even" or a level; none for anything else.
std::optional<SpreadRequest> read_spread(const std::string& name, const std::string& how);

/// Reads NAME=even or NAME=LEVEL; throws CLI::ValidationError (wrong usage).
SpreadRequest parse_spread(const std::string& text);

/// Sets the shares of the edges of all boundaries whose discharges are totals: an edge takes as
/// much as the uniform flow of its depth h over Manning's n does, h^(5/3) / n per metre. Where the
/// initial water leaves the whole boundary dry, all metres take the same. `contents` has its
/// fields and boundaries; `out` is told. Throws tools::Error.
void spread_discharges(const std::vector<SpreadRequest>& requests, Case& contents,
                       std::ostream& out);

}  // namespace mesh_import
