#include "mesh/spread.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "mesh/import_fields.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

/// An edge of a boundary, and what the discharge over it depends on.
struct Opening {
  std::size_t edge;
  double length;  // m
  double bed;     // of its cell, m
  double level;   // of the initial water, m
  double friction;
  double weight = 0.0;  // of a metre
};

std::vector<Opening> openings_of(const Case& contents, std::size_t boundary,
                                 const std::vector<double>& bed) {
  std::vector<Opening> openings;
  for (std::size_t i = 0; i < contents.edges.size(); ++i) {
    if (contents.boundaries.of_edge[i] != static_cast<int>(boundary)) continue;
    const Edge& edge = contents.edges[i];
    const Node& a = contents.mesh.nodes[static_cast<std::size_t>(edge.node1)];
    const Node& b = contents.mesh.nodes[static_cast<std::size_t>(edge.node2)];
    const auto cell = static_cast<std::size_t>(edge.left);
    openings.push_back({i, std::hypot(b.x - a.x, b.y - a.y), bed[cell], contents.level[cell],
                        contents.friction.empty() ? 0.0 : contents.friction[cell]});
  }
  return openings;
}

/// Gives the metres of an opening their weight, and answers whether any has one.
bool weigh_by_conveyance(std::optional<double> level, std::vector<Opening>& openings) {
  const bool is_smooth = std::any_of(openings.begin(), openings.end(), [](const Opening& opening) {
    return !(opening.friction > 0.0);
  });
  bool is_wet = false;
  for (Opening& opening : openings) {
    const double depth = std::max(level.value_or(opening.level) - opening.bed, 0.0);
    opening.weight = std::pow(depth, 5.0 / 3.0) / (is_smooth ? 1.0 : opening.friction);
    is_wet = is_wet || opening.weight > 0.0;
  }
  return is_wet;
}

void weigh_evenly(std::vector<Opening>& openings) {
  for (Opening& opening : openings) opening.weight = 1.0;
}

[[noreturn]] void refuse_level(const SpreadRequest& request, const std::vector<Opening>& openings) {
  const auto lowest =
      std::min_element(openings.begin(), openings.end(),
                       [](const Opening& a, const Opening& b) { return a.bed < b.bed; });
  throw tools::Error("--spread " + request.name + "=" + shown(*request.level) +
                     ": no cell along the boundary lies below this level, the lowest at " +
                     shown(lowest->bed) + " m; expected a higher one.");
}

/// Weighs the openings, and answers in words how.
std::string weigh(const SpreadRequest* request, std::vector<Opening>& openings) {
  if (request != nullptr && request->is_even) {
    weigh_evenly(openings);
    return "evenly";
  }
  const std::optional<double> level = request != nullptr ? request->level : std::nullopt;
  if (weigh_by_conveyance(level, openings)) {
    return level ? "by conveyance below " + shown(*level) + " m"
                 : "by conveyance of the initial water";
  }
  if (level) refuse_level(*request, openings);
  weigh_evenly(openings);
  return "evenly, as it is dry at the start (--spread NAME=LEVEL spreads it by conveyance)";
}

const SpreadRequest* find_request(const std::vector<SpreadRequest>& requests,
                                  const std::string& name) {
  const auto found =
      std::find_if(requests.begin(), requests.end(),
                   [&](const SpreadRequest& request) { return request.name == name; });
  return found == requests.end() ? nullptr : &*found;
}

/// Every request must name a boundary that has a total to spread.
void check_requests(const std::vector<SpreadRequest>& requests, const Boundaries& boundaries) {
  for (const SpreadRequest& request : requests) {
    const auto& list = boundaries.list;
    if (std::any_of(list.begin(), list.end(), [&](const Boundary& boundary) {
          return boundary.name == request.name && boundary.is_total;
        })) {
      continue;
    }
    throw tools::Error("--spread " + request.name + ": no discharge in m3/s is given for \"" +
                       request.name + "\"; expected the name of a boundary that has one, as in " +
                       "--boundary " + request.name + "=discharge:-40m3/s.");
  }
}

}  // namespace

std::optional<SpreadRequest> read_spread(const std::string& name, const std::string& how) {
  const SpreadRequest request{name, how == "even", utils::parse_finite_number(how)};
  if (!request.is_even && !request.level) return std::nullopt;
  return request;
}

SpreadRequest parse_spread(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  std::optional<SpreadRequest> request;
  if (equals != std::string::npos && equals > 0) {
    request = read_spread(text.substr(0, equals), text.substr(equals + 1));
  }
  if (!request) {
    throw CLI::ValidationError("--spread", "found \"" + text +
                                               "\", expected NAME=even or NAME=LEVEL, as in "
                                               "inflow=101.5");
  }
  return *request;
}

void spread_discharges(const std::vector<SpreadRequest>& requests, Case& contents,
                       std::ostream& out) {
  Boundaries& boundaries = contents.boundaries;
  check_requests(requests, boundaries);
  const std::vector<double> bed = bed_of_cells(contents);
  boundaries.share_of_edge.assign(contents.edges.size(), 0.0);
  for (std::size_t i = 0; i < boundaries.list.size(); ++i) {
    const Boundary& boundary = boundaries.list[i];
    if (!boundary.is_total) continue;
    std::vector<Opening> openings = openings_of(contents, i, bed);
    const std::string how = weigh(find_request(requests, boundary.name), openings);
    double sum = 0.0;
    for (const Opening& opening : openings) sum += opening.weight * opening.length;
    std::size_t n_open = 0;
    for (const Opening& opening : openings) {
      boundaries.share_of_edge[opening.edge] = opening.weight / sum;
      n_open += opening.weight > 0.0;
    }
    out << "Spread the discharge of " << boundary.name << " over " << n_open << " of "
        << utils::counted(openings.size(), "edge") << ", " << how << ".\n";
  }
}

}  // namespace mesh_import
