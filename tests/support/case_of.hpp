// The case and the state of a model whose objects a test has built by hand.
#pragma once

#include <cmath>
#include <map>
#include <stdexcept>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"
#include "engine/State.hpp"
#include "globals/Globals.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "model/SWE_Exner.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"

namespace support {

/// Describes a model and the globals that its objects read.
class CaseOfModel {
 public:
  explicit CaseOfModel(const PhysicalModel& model) : model_(model) {
    case_.has_sediments = dynamic_cast<const SWE_Exner*>(&model) != nullptr;
    case_.t_start = Globals_Params::tStart;
    case_.t_end = Globals_Params::tEnd;
    case_.zero_depth = Constants::ZERO_DEPTH;
    case_.sediment = {Globals_Sed::g_d50, Globals_Sed::g_sedimentsDensity,
                      Globals_Sed::g_sedimentsManning, Globals_Sed::g_sedimentsPorosity};
    case_.has_infiltration = model.has_infiltration;
    add_nodes();
    for (const auto& cell : model.cells) add_cell(*cell);
    for (const auto& edge : model.interfaces) add_edge(*edge);
  }
  cases::Case take() { return std::move(case_); }

 private:
  cases::Number number_of(const MeshNode* node) const {
    return static_cast<cases::Number>(node - model_.mesh_nodes.data());
  }

  void add_nodes() {
    for (const MeshNode& node : model_.mesh_nodes) {
      case_.mesh.x.push_back(node.x);
      case_.mesh.y.push_back(node.y);
      case_.mesh.z.push_back(node.z);
    }
  }

  void add_cell(const ComputationalCell& cell) {
    std::vector<cases::Number> nodes;
    for (const MeshNode* node : cell.nodes) nodes.push_back(number_of(node));
    case_.mesh.add_cell(nodes);
    cases::CellFields& fields = case_.fields;
    fields.bed.push_back(cell.bed_rock_level);
    if (case_.has_sediments) fields.sediment.push_back(cell.U.hs);
    fields.level.push_back(cell.free_surface_level);
    fields.qx.push_back(cell.U.qx);
    fields.qy.push_back(cell.U.qy);
    fields.infiltrated.push_back(cell.param.infiltrated_depth);
    add_sources(cell);
  }

  void add_sources(const ComputationalCell& cell) {
    int rain = -1, soil = -1;
    for (SourceTerm* term : cell.source_terms) {
      if (const auto* friction = dynamic_cast<const FrictionTerm*>(term)) {
        case_.fields.manning.push_back(friction->get_friction_coefficient());
      } else if (const auto* hyetogram = dynamic_cast<const RainTerm*>(term)) {
        rain = number_of(*hyetogram);
      } else {
        soil = number_of_soil(*term);
      }
    }
    case_.fields.rain.push_back(rain);
    case_.fields.soil.push_back(soil);
  }

  int number_of(const RainTerm& term) {
    const auto [known, is_new] = terms_.try_emplace(&term, static_cast<int>(case_.rain.size()));
    if (is_new) {
      case_.rain.push_back(
          {term.getID(), static_cast<int>(term.get_dts()), term.times, term.intensities});
    }
    return known->second;
  }

  int number_of_soil(const SourceTerm& term) {
    const auto [known, is_new] = terms_.try_emplace(&term, static_cast<int>(case_.soils.size()));
    if (!is_new) return known->second;
    if (const auto* horton = dynamic_cast<const HortonTerm*>(&term)) {
      const physics::HortonSoil& h = horton->soil();
      case_.soils.push_back({term.getID(), cases::HortonParameters{h.f0, h.fc, h.k, h.Fmax, h.kr}});
    } else {
      const auto& green_ampt = dynamic_cast<const GreenAmptTerm&>(term);
      case_.soils.push_back({term.getID(), parameters_of(green_ampt.soil())});
    }
    return known->second;
  }

  /// Parameters that give this very soil.
  static cases::GreenAmptParameters parameters_of(const physics::GreenAmptSoil& soil) {
    for (const double towards : {0.0, HUGE_VAL}) {
      double L = soil.Fmax;
      for (int i = 0; i < 4; ++i, L = std::nextafter(L, towards)) {
        const auto same = physics::green_ampt_soil(soil.Ks, soil.psi, 0.0, soil.dtheta, L, soil.kr);
        if (same.Fmax == soil.Fmax) return {soil.Ks, soil.psi, 0.0, soil.dtheta, L, soil.kr};
      }
    }
    throw std::runtime_error("a soil that no parameters give");
  }

  void add_edge(const GenericInterface& edge) {
    cases::Mesh& mesh = case_.mesh;
    const cases::Number number = mesh.n_edges();
    mesh.left.push_back(edge.cell_left->id);
    mesh.right.push_back(edge.cell_right != nullptr ? edge.cell_right->id : -1);
    mesh.node1.push_back(number_of(edge.nodes[0]));
    mesh.node2.push_back(number_of(edge.nodes[1]));
    if (edge.cell_right == nullptr) mesh.boundaries.push_back(boundary_of(number, edge));
  }

  cases::Boundary boundary_of(cases::Number number, const GenericInterface& edge) {
    if (const auto* q = dynamic_cast<const HydroBCDischarge*>(&edge)) {
      return {number, edge_code::discharge, q->q_imposed, -1};
    }
    if (const auto* level = dynamic_cast<const HydroBCWaterLevel*>(&edge)) {
      return {number, edge_code::water_level, level->level_imposed, -1};
    }
    if (const auto* hydrograph = dynamic_cast<const HydroBCHydrograph*>(&edge)) {
      return {number, edge_code::hydrograph, 0.0, add(*hydrograph->series)};
    }
    if (const auto* limnigraph = dynamic_cast<const HydroBCLimnigraph*>(&edge)) {
      return {number, edge_code::limnigraph, 0.0, add(*limnigraph->series)};
    }
    const bool is_open = dynamic_cast<const HydroBCTransmissive*>(&edge) != nullptr;
    return {number, is_open ? edge_code::transmissive : edge_code::wall, 0.0, -1};
  }

  int add(const TimeSeries& series) {
    const std::size_t number = case_.series.size();
    case_.series.push_back({"series " + std::to_string(number), series.times, series.values});
    return static_cast<int>(number);
  }

  const PhysicalModel& model_;
  cases::Case case_;
  std::map<const SourceTerm*, int> terms_;
};

/// Friction, if any, must be on all cells.
inline cases::Case case_of(const PhysicalModel& model) { return CaseOfModel(model).take(); }

inline cases::Mesh mesh_of(const PhysicalModel& model) { return case_of(model).mesh; }

/// Before the first step: the rain has not begun.
inline engine::State state_of(const PhysicalModel& model, const cases::Case& contents) {
  engine::State state;
  const bool has_bed = contents.has_sediments;
  for (const auto& cell : model.cells) {
    state.h.push_back(cell->U.h);
    state.qx.push_back(cell->U.qx);
    state.qy.push_back(cell->U.qy);
    state.eta.push_back(cell->free_surface_level);
    state.max_h.push_back(cell->max_values.h);
    if (!contents.soils.empty()) state.infiltrated.push_back(cell->param.infiltrated_depth);
    if (!has_bed) continue;
    state.hs.push_back(cell->U.hs);
    state.qsx.push_back(cell->U.qsx);
    state.qsy.push_back(cell->U.qsy);
    state.dqs_dh.push_back(cell->dqs_dh);
  }
  state.rain_clocks.assign(contents.rain.size(), physics::clock_before_rain(contents.t_start));
  return state;
}

}  // namespace support
