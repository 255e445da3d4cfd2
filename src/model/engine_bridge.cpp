#include "model/engine_bridge.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>
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
#include "interfaces/SedBCDischarge.hpp"
#include "interfaces/SedBCTransmissive.hpp"
#include "interfaces/SedBCWall.hpp"
#include "interfaces/SedBCWaterLevel.hpp"
#include "interfaces/SedFluxCLHLLC.hpp"
#include "model/CellSWE.hpp"
#include "model/CellSWE_Exner.hpp"
#include "model/PhysicalModel.hpp"
#include "sources/FrictionTerm.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"

namespace {

using kernels::BoundaryKind;

/// The object as exactly this class, and not as one derived from it.
template <class Class, class Base>
Class* exactly(Base* object) {
  return typeid(*object) == typeid(Class) ? static_cast<Class*>(object) : nullptr;
}

/// The object as this boundary of the hydrodynamic model or as its twin of the model with
/// sediments.
template <class Hydro, class Sed>
Hydro* either(GenericInterface* interface) {
  Hydro* const hydro = exactly<Hydro>(interface);
  return hydro != nullptr ? hydro : exactly<Sed>(interface);
}

/// What a boundary imposes; none if its class is not known to the tables. What a time series
/// imposes is set at every step.
std::optional<engine::BoundaryInput> boundary_of(GenericInterface* interface) {
  const int edge = interface->tag;
  if (either<HydroBCWall, SedBCWall>(interface)) {
    return engine::BoundaryInput{edge, BoundaryKind::wall, 0.0, 0.0};
  }
  if (either<HydroBCTransmissive, SedBCTransmissive>(interface)) {
    return engine::BoundaryInput{edge, BoundaryKind::transmissive, 0.0, 0.0};
  }
  if (const auto* discharge = either<HydroBCDischarge, SedBCDischarge>(interface)) {
    const auto* sediment = exactly<SedBCDischarge>(interface);
    return engine::BoundaryInput{edge, BoundaryKind::discharge, discharge->q_imposed,
                                 sediment != nullptr ? sediment->qs_imposed : 0.0};
  }
  if (const auto* level = either<HydroBCWaterLevel, SedBCWaterLevel>(interface)) {
    return engine::BoundaryInput{edge, BoundaryKind::water_level, level->imposed_depth(), 0.0};
  }
  if (exactly<HydroBCHydrograph>(interface)) {
    return engine::BoundaryInput{edge, BoundaryKind::discharge, 0.0, 0.0};
  }
  if (exactly<HydroBCLimnigraph>(interface)) {
    return engine::BoundaryInput{edge, BoundaryKind::water_level, 0.0, 0.0};
  }
  return std::nullopt;
}

bool is_interior(GenericInterface* interface, bool has_bed) {
  return has_bed ? exactly<SedFluxCLHLLC>(interface) != nullptr
                 : exactly<HydroFluxLHLLC>(interface) != nullptr;
}

/// Adds an edge to the input; false if the tables do not know its class.
bool add_edge(engine::ModelInput& input, GenericInterface* interface) {
  const bool interior = is_interior(interface, input.has_bed);
  if (!interior) {
    const auto boundary = boundary_of(interface);
    if (!boundary) return false;
    input.boundaries.push_back(*boundary);
  }
  input.edges.left.push_back(interface->cell_left->id);
  input.edges.right.push_back(interior ? interface->cell_right->id : -1);
  input.edges.nx.push_back(interface->normal.x);
  input.edges.ny.push_back(interface->normal.y);
  input.edges.length.push_back(interface->length);
  return true;
}

/// Gathers the source terms of the cells. Each kind has one column, so that a cell can have one
/// term of it at most.
class SourceColumns {
 public:
  explicit SourceColumns(engine::ModelInput& input) : input_(input) {}

  /// False if the tables do not know a term of the cell, or have no room for it.
  bool add(const ComputationalCell& cell) {
    int friction = 0, rain = 0, soil = 0;
    double manning = 0.0;
    int hyetogram_number = 0, soil_number = -1;
    for (SourceTerm* source : cell.source_terms) {
      if (const auto* manning_term = exactly<FrictionTerm>(source)) {
        manning = manning_term->get_friction_coefficient();
        ++friction;
      } else if (const auto* rain_term = exactly<RainTerm>(source)) {
        hyetogram_number = number_of_hyetogram(*rain_term, cell.param);
        ++rain;
      } else if (exactly<GreenAmptTerm>(source) || exactly<HortonTerm>(source)) {
        soil_number = number_of_soil(source);
        ++soil;
      } else {
        return false;
      }
    }
    frictions_ += friction;
    input_.cells.manning.push_back(manning);
    input_.cells.rain.push_back(hyetogram_number);
    input_.cells.soil.push_back(soil_number);
    // The bed load takes its roughness from the cell.
    const bool same_roughness = !input_.has_bed || cell.friction == manning;
    return friction <= 1 && rain <= 1 && soil <= 1 && same_roughness;
  }

  /// Drops the columns that no cell needs; false if only some cells have friction.
  bool complete() {
    if (frictions_ == 0) input_.cells.manning = {};
    if (input_.rain.empty()) input_.cells.rain = {};
    if (input_.soils.empty()) {
      input_.cells.soil = {};
      input_.cells.infiltrated = {};
    }
    return frictions_ == 0 || frictions_ == input_.cells.h.size();
  }

 private:
  int number_of_hyetogram(const RainTerm& term, const ParamCell& param) {
    const physics::RainClock clock = {param.last_update_time, param.hyetogram_index, param.rain_dt};
    const auto same = [&](const engine::RainInput& known) {
      return known.hyetogram.times == term.times.data() &&
             known.clock.last_update_time == clock.last_update_time &&
             known.clock.hyetogram_index == clock.hyetogram_index &&
             known.clock.rain_dt == clock.rain_dt;
    };
    auto& rain = input_.rain;
    const auto known = std::find_if(rain.begin(), rain.end(), same);
    const int number = static_cast<int>(known - rain.begin()) + 1;
    if (known == rain.end()) rain.push_back({term.hyetogram(), clock});
    return number;
  }

  int number_of_soil(SourceTerm* source) {
    const auto [known, is_new] = soils_.try_emplace(source, static_cast<int>(soils_.size()));
    if (is_new) {
      const auto* green_ampt = exactly<GreenAmptTerm>(source);
      const auto* horton = exactly<HortonTerm>(source);
      input_.soils.push_back({green_ampt != nullptr,
                              green_ampt != nullptr ? green_ampt->soil() : physics::GreenAmptSoil{},
                              horton != nullptr ? horton->soil() : physics::HortonSoil{}});
    }
    return known->second;
  }

  engine::ModelInput& input_;
  std::size_t frictions_ = 0;
  std::map<const SourceTerm*, int> soils_;
};

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
  cells.bed.push_back(cell.bed_rock_level);
  cells.max_node.push_back(cell.max_node_level);
  cells.area.push_back(cell.area);
  cells.char_length.push_back(cell.char_length);
  cells.infiltrated.push_back(cell.param.infiltrated_depth);
  for (std::size_t k = 0; k < 3; ++k) cells.slots[k].push_back(slot_of(cell, k));
}

void add_bed(engine::CellTable& cells, const ComputationalCell& cell) {
  cells.rock.push_back(cell.bed_rock_level);
  cells.bed.back() = cell.bed_level;
  cells.hs.push_back(cell.U.hs);
  cells.qsx.push_back(cell.U.qsx);
  cells.qsy.push_back(cell.U.qsy);
  cells.dqs_dh.push_back(cell.dqs_dh);
}

void reserve(engine::ModelInput& input, std::size_t cells, std::size_t edges) {
  engine::CellTable& c = input.cells;
  input.x.reserve(cells);
  input.y.reserve(cells);
  for (engine::Column* column : {&c.h, &c.qx, &c.qy, &c.eta, &c.max_h, &c.bed, &c.area,
                                 &c.char_length, &c.manning, &c.infiltrated}) {
    column->reserve(cells);
  }
  for (auto* column : {&c.rain, &c.soil, &c.slots[0], &c.slots[1], &c.slots[2]}) {
    column->reserve(cells);
  }
  engine::EdgeTable& e = input.edges;
  e.left.reserve(edges);
  e.right.reserve(edges);
  for (auto* column : {&e.nx, &e.ny, &e.length}) column->reserve(edges);
}

/// Whether all cells are exactly of one class.
template <class Cell>
bool all_cells_are(const PhysicalModel& model) {
  return std::all_of(model.cells.begin(), model.cells.end(),
                     [](const auto& cell) { return exactly<Cell>(cell.get()) != nullptr; });
}

std::optional<engine::ModelInput> describe(PhysicalModel& model) {
  if (model.interfaces.size() > engine::most_edges) return std::nullopt;
  engine::ModelInput input;
  input.has_bed = !model.cells.empty() && all_cells_are<CellSWE_Exner>(model);
  if (!input.has_bed && !all_cells_are<CellSWE>(model)) return std::nullopt;
  input.zero_depth = Constants::ZERO_DEPTH;
  input.char_length_min = model.char_length_min;
  input.h0 = model.h0;
  input.porosity = Globals_Sed::g_sedimentsPorosity;
  input.grains = {Globals_Sed::g_d50, Globals_Sed::g_sedimentsDensity};
  reserve(input, model.cells.size(), model.interfaces.size());
  SourceColumns sources(input);
  for (const auto& cell : model.cells) {
    input.x.push_back(cell->center.x);
    input.y.push_back(cell->center.y);
    add_cell(input.cells, *cell);
    if (input.has_bed) add_bed(input.cells, *cell);
    if (!sources.add(*cell)) return std::nullopt;
  }
  if (!sources.complete()) return std::nullopt;
  for (const auto& interface : model.interfaces) {
    if (!add_edge(input, interface.get())) return std::nullopt;
  }
  return input;
}

std::string_view wanted_path() {
  const char* const text = std::getenv("QUILLMERE_ENGINE");
  return text == nullptr ? "" : text;
}

}  // namespace

std::unique_ptr<CompiledModel> CompiledModel::compile(PhysicalModel& model, int threads,
                                                      int cells_per_patch) {
  const std::string_view path = wanted_path();
  if (path != "" && path != "objects" && path != "tables") {
    throw std::runtime_error("Error. QUILLMERE_ENGINE is \"" + std::string(path) +
                             "\", expected objects or tables.");
  }
  if (path == "objects") return nullptr;
  if (auto input = describe(model)) {
    input->cells_per_patch = cells_per_patch;
    try {
      return std::unique_ptr<CompiledModel>(new CompiledModel(model, std::move(*input), threads));
    } catch (const std::length_error&) {  // more edges of a cell than the tables can number
    }
  }
  if (path == "tables") {
    throw std::runtime_error(
        "Error. QUILLMERE_ENGINE asks for tables, but the model holds what "
        "they do not know.");
  }
  return nullptr;
}

CompiledModel::CompiledModel(PhysicalModel& model, engine::ModelInput&& input, int threads)
    : engine_(std::move(input), threads) {
  int boundary = 0;
  for (const auto& interface : model.interfaces) {
    if (auto* hydrograph = exactly<HydroBCHydrograph>(interface.get())) {
      hydrographs_.push_back({boundary, hydrograph});
    } else if (auto* limnigraph = exactly<HydroBCLimnigraph>(interface.get())) {
      limnigraphs_.push_back({boundary, limnigraph});
    }
    if (!is_interior(interface.get(), engine_.has_bed())) ++boundary;
  }
}

double CompiledModel::advance() {
  for (const auto& [boundary, hydrograph] : hydrographs_) {
    engine_.impose(boundary, hydrograph->discharge_now());
  }
  for (const auto& [boundary, limnigraph] : limnigraphs_) {
    engine_.impose(boundary, limnigraph->depth_now());
  }
  engine_.fluxes({Globals::t, Globals_Params::tStart, Globals_Params::tEnd, Globals::dt});
  const double step = engine_.advance();
  if (const auto place = engine_.take_not_hyperbolic()) {
    warn_not_hyperbolic(engine_.cell_at(place->place), place->h, place->qx, place->qy);
  }
  return step;
}
