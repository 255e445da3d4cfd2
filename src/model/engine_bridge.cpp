#include "model/engine_bridge.hpp"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <typeinfo>

#include "globals/Globals.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "interfaces/HydroFluxLHLLC.hpp"
#include "model/CellSWE.hpp"
#include "model/PhysicalModel.hpp"
#include "sources/FrictionTerm.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"

namespace {

using engine::BoundaryKind;

/// The object as exactly this class, and not as one derived from it.
template <class Class, class Base>
Class* exactly(Base* object) {
  return typeid(*object) == typeid(Class) ? static_cast<Class*>(object) : nullptr;
}

/// Kind and imposed value of a boundary; none if its class is not known to the tables. What a time
/// series imposes is set at every step.
struct Boundary {
  BoundaryKind kind;
  double imposed = 0.0;
};

std::optional<Boundary> boundary_of(GenericInterface* interface) {
  if (exactly<HydroBCWall>(interface)) return Boundary{BoundaryKind::wall};
  if (exactly<HydroBCTransmissive>(interface)) return Boundary{BoundaryKind::transmissive};
  if (const auto* discharge = exactly<HydroBCDischarge>(interface)) {
    return Boundary{BoundaryKind::discharge, discharge->q_imposed};
  }
  if (const auto* level = exactly<HydroBCWaterLevel>(interface)) {
    return Boundary{BoundaryKind::water_level, level->imposed_depth()};
  }
  if (exactly<HydroBCHydrograph>(interface)) return Boundary{BoundaryKind::discharge};
  if (exactly<HydroBCLimnigraph>(interface)) return Boundary{BoundaryKind::water_level};
  return std::nullopt;
}

/// Adds an edge to the tables; false if they do not know its class.
bool add_edge(engine::EdgeTable& edges, GenericInterface* interface) {
  const bool is_interior = exactly<HydroFluxLHLLC>(interface) != nullptr;
  const auto boundary = is_interior ? Boundary{BoundaryKind::wall} : boundary_of(interface);
  if (!boundary) return false;
  edges.left.push_back(interface->cell_left->id);
  edges.right.push_back(is_interior ? interface->cell_right->id : -1);
  edges.nx.push_back(interface->normal.x);
  edges.ny.push_back(interface->normal.y);
  edges.length.push_back(interface->length);
  edges.kind.push_back(boundary->kind);
  edges.imposed.push_back(boundary->imposed);
  return true;
}

/// Adds a source term of a cell to the input; false if the tables do not know it.
bool add_source(engine::ModelInput& input, const ComputationalCell& cell, SourceTerm* source) {
  if (const auto* friction = exactly<FrictionTerm>(source)) {
    input.cells.manning.push_back(friction->get_friction_coefficient());
    return true;
  }
  if (const auto* rain = exactly<RainTerm>(source)) {
    input.rain.push_back(
        {cell.id,
         rain->hyetogram(),
         {cell.param.last_update_time, cell.param.hyetogram_index, cell.param.rain_dt}});
    return true;
  }
  if (const auto* soil = exactly<GreenAmptTerm>(source)) {
    input.infiltration.push_back({cell.id, true, soil->soil(), {}});
    return true;
  }
  if (const auto* soil = exactly<HortonTerm>(source)) {
    input.infiltration.push_back({cell.id, false, {}, soil->soil()});
    return true;
  }
  return false;
}

/// Whether a cell has at most one term of a kind: more than one would share a column.
bool terms_are_distinct(const ComputationalCell& cell) {
  int friction = 0, rain = 0, infiltration = 0;
  for (SourceTerm* source : cell.source_terms) {
    if (exactly<FrictionTerm>(source)) ++friction;
    if (exactly<RainTerm>(source)) ++rain;
    if (exactly<GreenAmptTerm>(source) || exactly<HortonTerm>(source)) ++infiltration;
  }
  return friction <= 1 && rain <= 1 && infiltration <= 1;
}

/// The slot that the k-th interface of a cell fills, or -1: a boundary code on an edge with a right
/// cell leaves that cell's slot empty.
int slot_of(const ComputationalCell& cell, std::size_t k) {
  if (k >= cell.interfaces.size()) return -1;
  const GenericInterface& interface = *cell.interfaces[k];
  if (interface.cell_left == &cell) return 2 * interface.tag;
  return interface.cell_right == &cell ? 2 * interface.tag + 1 : -1;
}

void add_cell(engine::CellTable& cells, const ComputationalCell& cell) {
  cells.h.push_back(cell.U.h);
  cells.qx.push_back(cell.U.qx);
  cells.qy.push_back(cell.U.qy);
  cells.eta.push_back(cell.free_surface_level);
  cells.max_h.push_back(cell.max_values.h);
  cells.max_u.push_back(cell.max_values.qx);
  cells.max_v.push_back(cell.max_values.qy);
  cells.zb.push_back(cell.bed_rock_level);
  cells.max_node.push_back(cell.max_node_level);
  cells.area.push_back(cell.area);
  cells.char_length.push_back(cell.char_length);
  cells.infiltrated.push_back(cell.param.infiltrated_depth);
  for (std::size_t k = 0; k < 3; ++k) cells.slots[k].push_back(slot_of(cell, k));
}

std::optional<engine::ModelInput> describe(PhysicalModel& model) {
  engine::ModelInput input;
  input.zero_depth = Constants::ZERO_DEPTH;
  input.char_length_min = model.char_length_min;
  input.h0 = model.h0;
  for (const auto& cell : model.cells) {
    if (!exactly<CellSWE>(cell.get()) || !terms_are_distinct(*cell)) return std::nullopt;
    for (SourceTerm* source : cell->source_terms) {
      if (!add_source(input, *cell, source)) return std::nullopt;
    }
    input.x.push_back(cell->center.x);
    input.y.push_back(cell->center.y);
    add_cell(input.cells, *cell);
  }
  const std::size_t with_friction = input.cells.manning.size();
  if (with_friction != 0 && with_friction != model.cells.size()) return std::nullopt;
  for (const auto& interface : model.interfaces) {
    if (!add_edge(input.edges, interface.get())) return std::nullopt;
  }
  return input;
}

std::string_view wanted_path() {
  const char* const text = std::getenv("QUILLMERE_ENGINE");
  return text == nullptr ? "" : text;
}

}  // namespace

std::unique_ptr<CompiledModel> CompiledModel::compile(PhysicalModel& model, int threads) {
  const std::string_view path = wanted_path();
  if (path != "" && path != "objects" && path != "tables") {
    throw std::runtime_error("Error. QUILLMERE_ENGINE is \"" + std::string(path) +
                             "\", expected objects or tables.");
  }
  if (path == "objects") return nullptr;
  auto input = describe(model);
  if (input) {
    return std::unique_ptr<CompiledModel>(new CompiledModel(model, std::move(*input), threads));
  }
  if (path == "tables") {
    throw std::runtime_error(
        "Error. QUILLMERE_ENGINE asks for tables, but the model holds what "
        "they do not know.");
  }
  return nullptr;
}

CompiledModel::CompiledModel(PhysicalModel& model, engine::ModelInput&& input, int threads)
    : model_(model), engine_(std::move(input), threads) {
  for (const auto& interface : model.interfaces) {
    if (auto* hydrograph = exactly<HydroBCHydrograph>(interface.get())) {
      hydrographs_.push_back({interface->tag, hydrograph});
    } else if (auto* limnigraph = exactly<HydroBCLimnigraph>(interface.get())) {
      limnigraphs_.push_back({interface->tag, limnigraph});
    }
  }
}

void CompiledModel::fluxes() {
  for (const auto& [edge, hydrograph] : hydrographs_) {
    engine_.impose(edge, hydrograph->discharge_now());
  }
  for (const auto& [edge, limnigraph] : limnigraphs_) {
    engine_.impose(edge, limnigraph->depth_now());
  }
  engine_.fluxes();
}

double CompiledModel::advance() {
  return engine_.advance({Globals::t, Globals_Params::tStart, Globals_Params::tEnd, Globals::dt});
}

void CompiledModel::publish() {
  for (int cell = 0; cell < static_cast<int>(model_.cells.size()); ++cell) publish_cell(cell);
}

void CompiledModel::publish(const std::vector<int>& cells) {
  for (const int cell : cells) publish_cell(cell);
}

void CompiledModel::publish_cell(int cell) {
  const engine::CellOutput state = engine_.cell(cell);
  ComputationalCell& object = *model_.cells[static_cast<std::size_t>(cell)];
  object.U.set_values(state.h, state.qx, state.qy);
  object.free_surface_level = state.eta;
  object.max_values.set_values(state.max_h, state.max_u, state.max_v);
  object.param.infiltrated_depth = state.infiltrated;
}
