// The case that a model built by hand would come from.
#pragma once

#include <map>

#include "case/Case.hpp"
#include "globals/Globals.hpp"
#include "globals/edge_codes.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "model/SWE_Exner.hpp"
#include "sources/RainTerm.hpp"

namespace support {

/// Code of a boundary, whichever model it belongs to.
inline int code_of(const GenericInterface* boundary) {
  if (dynamic_cast<const HydroBCTransmissive*>(boundary)) return edge_code::transmissive;
  if (dynamic_cast<const HydroBCDischarge*>(boundary)) return edge_code::discharge;
  if (dynamic_cast<const HydroBCWaterLevel*>(boundary)) return edge_code::water_level;
  if (dynamic_cast<const HydroBCHydrograph*>(boundary)) return edge_code::hydrograph;
  if (dynamic_cast<const HydroBCLimnigraph*>(boundary)) return edge_code::limnigraph;
  return edge_code::wall;
}

inline cases::Mesh mesh_of(const PhysicalModel& model) {
  cases::Mesh mesh;
  const auto number = [&](const MeshNode* node) {
    return static_cast<cases::Number>(node - model.mesh_nodes.data());
  };
  for (const MeshNode& node : model.mesh_nodes) {
    mesh.x.push_back(node.x);
    mesh.y.push_back(node.y);
    mesh.z.push_back(node.z);
  }
  for (const auto& cell : model.cells) {
    std::vector<cases::Number> nodes;
    for (const MeshNode* node : cell->nodes) nodes.push_back(number(node));
    mesh.add_cell(nodes);
  }
  for (const auto& edge : model.interfaces) {
    const bool is_boundary = edge->cell_right == nullptr;
    if (is_boundary) mesh.boundaries.push_back({mesh.n_edges(), code_of(edge.get()), 0.0, -1});
    mesh.left.push_back(edge->cell_left->id);
    mesh.right.push_back(is_boundary ? -1 : edge->cell_right->id);
    mesh.node1.push_back(number(edge->nodes[0]));
    mesh.node2.push_back(number(edge->nodes[1]));
  }
  return mesh;
}

/// Mesh, rain, and what the rule of the time step takes; of the boundaries their kinds only. The
/// model must be ready to step.
inline cases::Case case_of(const PhysicalModel& model) {
  cases::Case contents;
  contents.mesh = mesh_of(model);
  contents.has_sediments = dynamic_cast<const SWE_Exner*>(&model) != nullptr;
  contents.t_start = Globals_Params::tStart;
  contents.t_end = Globals_Params::tEnd;
  contents.zero_depth = Constants::ZERO_DEPTH;
  contents.has_infiltration = model.has_infiltration;
  contents.h0 = model.h0;
  contents.char_length_min = model.char_length_min;
  contents.fields.rain.assign(model.cells.size(), -1);
  std::map<const SourceTerm*, int> numbers;
  for (std::size_t i = 0; i < model.cells.size(); ++i) {
    for (const SourceTerm* source : model.cells[i]->source_terms) {
      const auto* rain = dynamic_cast<const RainTerm*>(source);
      if (rain == nullptr) continue;
      const auto [known, is_new] = numbers.try_emplace(rain, static_cast<int>(numbers.size()));
      contents.fields.rain[i] = known->second;
      if (!is_new) continue;
      contents.rain.push_back(
          {rain->getID(), static_cast<int>(rain->get_dts()), rain->times, rain->intensities});
    }
  }
  return contents;
}

}  // namespace support
