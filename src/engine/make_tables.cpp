// Builds the tables of a case, or of a part of one.
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "engine/Tables.hpp"
#include "engine/centers.hpp"
#include "engine/numbering.hpp"
#include "engine/runs.hpp"
#include "physics/stable_step.hpp"

namespace engine {

namespace {

using cases::Number;

using Bands = std::span<const std::uint8_t>;  ///< see cases::Part

/// The cells of a mesh in the order of the tables: the first of them, which are owned, in that of
/// their patches, then the ghosts as they come.
std::vector<int> order_of_cells(const cases::Mesh& mesh, int owned, const Bands& bands,
                                int cells_per_patch, ThreadTeam& team) {
  const CentersOfCells centers = centers_of(mesh, owned, team);
  std::vector<int> order = order_by_swept_runs(centers.x, centers.y, bands, cells_per_patch, team);
  order.resize(at(mesh.n_cells()));
  std::iota(order.begin() + owned, order.end(), owned);
  return order;
}

/// Fills the columns of the cells of a case, share by share.
class CellColumnsOfCase {
 public:
  CellColumnsOfCase(const cases::Case& contents, const std::vector<int>& order, Tables& tables)
      : case_(contents), order_(order), tables_(tables) {
    CellTable& c = tables.cells;
    size({&c.h, &c.qx, &c.qy, &c.eta, &c.max_h, &c.bed, &c.reciprocal_area, &c.char_length});
    if (!case_.fields.manning.empty()) size({&c.manning});
    if (!tables.soils.empty()) size({&c.infiltrated});
    if (!case_.fields.rain.empty()) c.rain.resize(order.size());
    if (!case_.fields.soil.empty()) c.soil.resize(order.size());
    if (tables.has_bed) {
      size({&c.hs, &c.qsx, &c.qsy, &c.dqs_dh, &c.rock});
    } else {
      size({&c.max_node});
    }
    tables.shortest.resize(at((tables.owned + cells_of_shortest - 1) / cells_of_shortest));
  }

  /// Cells that are computed; the shares begin at multiples of cells_of_shortest.
  void fill(int begin, int end) {
    for (int i = begin; i < end; ++i) fill_cell(i);
    const Column& length = tables_.cells.char_length;
    for (int i = begin; i < end; ++i) {
      double& shortest = tables_.shortest[at(i / cells_of_shortest)];
      if (i % cells_of_shortest == 0) shortest = physics::unbounded_step;
      shortest = physics::smaller(shortest, length[at(i)]);
    }
  }
  void fill_ghosts() {
    for (std::size_t i = at(tables_.owned); i < order_.size(); ++i) fill_cell(static_cast<int>(i));
  }

 private:
  void size(std::initializer_list<Column*> columns) const {
    for (Column* column : columns) column->resize(order_.size());
  }

  void fill_cell(int i) {
    const std::size_t k = at(i);
    const Number cell = order_[k];
    CellTable& c = tables_.cells;
    const cases::CellGeometry geometry = case_.mesh.geometry_of(cell);
    const physics::InitialWater water = cases::initial_water_of(case_, cell);
    c.h[k] = water.h;
    c.qx[k] = water.qx;
    c.qy[k] = water.qy;
    c.eta[k] = case_.fields.level[at(cell)];
    c.max_h[k] = 0.0;
    c.bed[k] = cases::bed_level_of(case_, cell);
    c.reciprocal_area[k] = 1.0 / geometry.area;
    c.char_length[k] = geometry.char_length();
    const cases::CellFields& fields = case_.fields;
    if (!c.manning.empty()) c.manning[k] = fields.manning[at(cell)];
    if (!c.infiltrated.empty()) {
      c.infiltrated[k] = fields.infiltrated.empty() ? 0.0 : fields.infiltrated[at(cell)];
    }
    if (!c.rain.empty()) c.rain[k] = fields.rain[at(cell)] + 1;
    if (!c.soil.empty()) c.soil[k] = fields.soil[at(cell)];
    if (!tables_.has_bed) {
      c.max_node[k] = geometry.highest_node;
      return;
    }
    c.hs[k] = fields.sediment.empty() ? 0.0 : fields.sediment[at(cell)];
    c.rock[k] = cases::bed_rock_of(case_, cell);
    c.qsx[k] = c.qsy[k] = c.dqs_dh[k] = 0.0;
  }

  const cases::Case& case_;
  const std::vector<int>& order_;
  Tables& tables_;
};

kernels::BoundaryKind kind_of(int code) {
  switch (code) {
    case edge_code::transmissive:
      return kernels::BoundaryKind::transmissive;
    case edge_code::discharge:
    case edge_code::hydrograph:
      return kernels::BoundaryKind::discharge;
    case edge_code::water_level:
    case edge_code::limnigraph:
      return kernels::BoundaryKind::water_level;
    default:
      return kernels::BoundaryKind::wall;
  }
}

void place_boundaries(Tables& tables, const cases::Mesh& mesh) {
  constexpr double no_sediment_fed = 0.0;
  tables.boundary_place.assign(mesh.boundaries.size(), -1);
  for (const Number edge : tables.patches.boundary_edge) {
    const cases::Boundary& boundary = *mesh.boundary_on(edge);
    const auto number = static_cast<std::size_t>(&boundary - mesh.boundaries.data());
    const int place = tables.place[at(mesh.left[at(edge)])];
    tables.boundary_place[number] = static_cast<int>(tables.boundaries.size());
    tables.boundaries.push_back({kind_of(boundary.code), place, mesh.edge_of(edge),
                                 imposed_by(boundary.code, boundary.value, tables, place),
                                 no_sediment_fed});
  }
}

/// Of the cells of the tables, which are those of the whole case.
cases::CaseScales scales_of_cells(const Tables& tables) {
  cases::CaseScales scales = {0.0, physics::unbounded_step};
  for (const double h : tables.cells.h) scales.h0 = physics::larger(scales.h0, h);
  for (const double length : tables.shortest) {
    scales.char_length_min = physics::smaller(scales.char_length_min, length);
  }
  return scales;
}

/// Sets the scales of the whole case, and what follows for dry cells.
void set_scales(const cases::CaseScales& scales, cases::Scheme scheme, Tables& tables) {
  tables.h0 = scales.h0;
  tables.char_length_min = scales.char_length_min;
  // The HLL schemes bound the step by wet cells and their neighbours.
  tables.dry_step = !cases::is_hll(scheme) ? physics::stable_step_dry(tables.char_length_min,
                                                                      tables.h0, tables.zero_depth)
                                           : physics::unbounded_step;
}

std::vector<Soil> soils_of(const cases::Case& contents) {
  std::vector<Soil> soils;
  for (const cases::Soil& soil : contents.soils) {
    if (const auto* p = std::get_if<cases::GreenAmptParameters>(&soil.parameters)) {
      soils.push_back({true, p->soil(), {}});
    } else {
      soils.push_back({false, {}, std::get<cases::HortonParameters>(soil.parameters).soil()});
    }
  }
  return soils;
}

void mark_border(Tables& tables, const std::vector<Number>& border) {
  for (const Number cell : border) {
    const int place = tables.border.emplace_back(tables.place[at(cell)]);
    tables.patches.patches[at(place / tables.cells_per_patch())].is_border = true;
  }
}

/// From now on edges have the numbers that these of a part have in the whole case.
void rename_edges(Patches& patches, const std::vector<Number>& edge_number) {
  for (std::vector<Number>* const numbers : {&patches.edge_number, &patches.cut_edge_number}) {
    for (Number& edge : *numbers) {
      if (edge >= 0) edge = edge_number[at(edge)];
    }
  }
}

void list_soils(Tables& tables) {
  if (tables.cells.soil.empty()) return;
  tables.soils_of_patch.resize(tables.patches.patches.size());
  for (std::size_t p = 0; p < tables.soils_of_patch.size(); ++p) {
    const Range cells = tables.patches.patches[p].cells;
    std::vector<int>& soils = tables.soils_of_patch[p];
    for (int i = cells.begin; i < cells.end; ++i) {
      const int soil = tables.cells.soil[at(i)];
      const bool is_new = std::find(soils.begin(), soils.end(), soil) == soils.end();
      if (soil >= 0 && is_new) soils.push_back(soil);
    }
  }
}

/// All but the scales, of the first cells of a case; the others are their ghosts.
Tables make_tables_of_first(int owned, const cases::Case& contents, const Bands& bands,
                            ThreadTeam& team, int cells_per_patch) {
  Tables tables;
  const cases::Mesh& mesh = contents.mesh;
  tables.has_bed = contents.has_sediments;
  tables.zero_depth = contents.zero_depth;
  tables.porosity = contents.sediment.porosity;
  tables.grains = {contents.sediment.d50, contents.sediment.density};
  // Soils that no cell names change nothing.
  if (!contents.fields.soil.empty()) tables.soils = soils_of(contents);
  tables.owned = owned;
  if (cells_per_patch == 0) cells_per_patch = cells_per_patch_for(owned, team.size());

  const std::vector<int> order = order_of_cells(mesh, owned, bands, cells_per_patch, team);
  tables.place = places_of(order);
  tables.patches = make_patches(mesh, tables.place, owned, cells_per_patch, team);
  CellColumnsOfCase columns(contents, order, tables);
  const int patch = tables.cells_per_patch();
  team.run([&](int member) {
    const Range patches = share_of(member, team.size(), tables.patches.patches.size());
    columns.fill(patches.begin * patch, std::min(owned, patches.end * patch));
  });
  columns.fill_ghosts();
  // Only fluxes over a mobile bed tell of edges by their numbers.
  if (!tables.has_bed) tables.patches.edge_number = tables.patches.cut_edge_number = {};
  if (cases::is_hll(contents.scheme)) tables.hll.emplace();
  place_boundaries(tables, mesh);
  list_soils(tables);
  tables.outer.assign(at(tables.first_boundary_slot()) + tables.boundaries.size(), tables.has_bed);
  if (tables.hll) make_hll_tables(contents, order, team, tables);
  return tables;
}

}  // namespace

double imposed_by(int code, double value, const Tables& tables, int place) {
  const cases::BoundaryKind* const kind = cases::boundary_kind(code);
  if (kind == nullptr) return 0.0;
  // Intended: the depth over the rock; that of a limnigraph is over the bed with its sediments.
  if (kind->imposes_level()) return tables.hll ? value : value - tables.cells.rock_of(place);
  return kind->imposes_discharge() ? value : 0.0;
}

Tables make_tables(const cases::Case& contents, ThreadTeam& team, int cells_per_patch) {
  Tables tables =
      make_tables_of_first(contents.mesh.n_cells(), contents, {}, team, cells_per_patch);
  set_scales(scales_of_cells(tables), contents.scheme, tables);
  return tables;
}

Tables make_tables(const cases::Part& part, ThreadTeam& team, int cells_per_patch) {
  Tables tables = make_tables_of_first(part.owned, part.contents, part.band, team, cells_per_patch);
  set_scales(part.scales, part.contents.scheme, tables);
  mark_border(tables, part.border);
  rename_edges(tables.patches, part.edge_number);
  tables.cell_number.assign(part.cell_number.begin(), part.cell_number.begin() + part.owned);
  return tables;
}

}  // namespace engine
