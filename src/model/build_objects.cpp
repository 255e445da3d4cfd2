#include "model/build_objects.hpp"

#include <vector>

#include "case/boundary_kinds.hpp"
#include "interfaces/TimeSeries.hpp"
#include "model/SWE.hpp"
#include "model/SWE_Exner.hpp"
#include "model/cell_fields.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"

namespace {

using cases::at;
using cases::Number;

void build_nodes(PhysicalModel& model, const cases::Mesh& mesh) {
  model.n_nodes = mesh.n_nodes();
  model.mesh_nodes.reserve(at(mesh.n_nodes()));
  for (std::size_t i = 0; i < at(mesh.n_nodes()); ++i) {
    model.mesh_nodes.emplace_back(mesh.x[i], mesh.y[i], mesh.z[i]);
  }
}

void build_cells(PhysicalModel& model, const cases::Mesh& mesh) {
  model.n_cells = mesh.n_cells();
  model.cells.reserve(at(mesh.n_cells()));
  std::vector<const MeshNode*> nodes;
  for (Number i = 0; i < mesh.n_cells(); ++i) {
    nodes.clear();
    for (const Number node : mesh.nodes_of(i)) nodes.push_back(&model.mesh_nodes[at(node)]);
    model.build_cell(i, nodes);
  }
}

void build_interfaces(PhysicalModel& model, const cases::Case& contents) {
  const cases::Mesh& mesh = contents.mesh;
  std::vector<std::shared_ptr<const TimeSeries>> series;  // so that no edge reads its file again
  for (const cases::Series& read : contents.series) series.push_back(TimeSeries::share(read));
  model.n_interfaces = mesh.n_edges();
  model.interfaces.reserve(at(mesh.n_edges()));
  auto boundary = mesh.boundaries.begin();
  for (Number i = 0; i < mesh.n_edges(); ++i) {
    const bool is_boundary = boundary != mesh.boundaries.end() && boundary->edge == i;
    const int code = is_boundary ? boundary->code : edge_code::interior;
    const bool has_series = is_boundary && boundary->series >= 0;
    model.build_interface(edge_code::scheme_lhllc, i, mesh.left[at(i)], mesh.right[at(i)],
                          model.mesh_nodes[at(mesh.node1[at(i)])],
                          model.mesh_nodes[at(mesh.node2[at(i)])], code,
                          is_boundary ? boundary->value : 0.0,
                          has_series ? contents.series[at(boundary->series)].file : "");
    if (is_boundary) ++boundary;
  }
}

void build_mesh(PhysicalModel& model, const cases::Case& contents) {
  build_nodes(model, contents.mesh);
  build_cells(model, contents.mesh);
  build_interfaces(model, contents);
  for (const auto& cell : model.cells) {
    cell->sort_interfaces_by_tag();
    cell->set_local_index_to_edges();
  }
}

std::unique_ptr<SourceTerm> rain_term(const cases::Hyetogram& hyetogram) {
  auto term = std::make_unique<RainTerm>(hyetogram.id, 0, hyetogram.step);
  term->times = hyetogram.times;
  term->intensities = hyetogram.intensities;
  return term;
}

std::unique_ptr<SourceTerm> term_of(int id, const cases::GreenAmptParameters& soil) {
  return std::make_unique<GreenAmptTerm>(id, soil.Ks, soil.psi, soil.theta_i, soil.theta_s, soil.L,
                                         soil.kr);
}

std::unique_ptr<SourceTerm> term_of(int id, const cases::HortonParameters& soil) {
  return std::make_unique<HortonTerm>(id, soil.f0, soil.fc, soil.k, soil.Fmax, soil.kr);
}

std::unique_ptr<SourceTerm> soil_term(const cases::Soil& soil) {
  return std::visit([&](const auto& parameters) { return term_of(soil.id, parameters); },
                    soil.parameters);
}

std::vector<SourceTerm*> pointers_to(const std::vector<std::unique_ptr<SourceTerm>>& terms) {
  std::vector<SourceTerm*> pointers;
  for (const auto& term : terms) pointers.push_back(term.get());
  return pointers;
}

/// Terms write in the order in which they are attached: friction, rain, soil.
void set_fields(ModelObjects& objects, const cases::CellFields& fields) {
  PhysicalModel& model = *objects.model;
  set_bed(model, fields.bed);
  set_sediment(model, fields.sediment);
  set_manning(model, fields.manning);
  set_initial_state(model, fields);
  attach_terms(model, fields.rain, pointers_to(objects.rain));
  attach_terms(model, fields.soil, pointers_to(objects.soils));
  set_infiltrated(model, fields.infiltrated);
}

}  // namespace

ModelObjects build_objects(const cases::Case& contents) {
  ModelObjects objects;
  for (const auto& hyetogram : contents.rain) objects.rain.push_back(rain_term(hyetogram));
  for (const auto& soil : contents.soils) objects.soils.push_back(soil_term(soil));
  if (contents.has_sediments) {
    objects.model = std::make_unique<SWE_Exner>();
  } else {
    objects.model = std::make_unique<SWE>();
  }
  build_mesh(*objects.model, contents);
  set_fields(objects, contents.fields);
  objects.model->has_infiltration = contents.has_infiltration;
  objects.model->findH0();
  objects.model->calculateCharLengthMin();
  return objects;
}
