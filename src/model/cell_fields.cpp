// The per-cell files of a model: one record per cell, in the order of the cells file.
#include <iostream>
#include <map>

#include "model/PhysicalModel.hpp"
#include "utils/stop.hpp"

void PhysicalModel::setFixedBedLevel(utils::TextScanner& file) {
  for (int k = 0; k < n_cells; ++k) {
    file.begin_record("cell", k, n_cells);
    cells[static_cast<std::size_t>(k)]->set_bed_rock_level(file.read_number("bed level"));
  }
}

void PhysicalModel::setFriction(utils::TextScanner& file) {
  for (int k = 0; k < n_cells; ++k) {
    file.begin_record("cell", k, n_cells);
    const double n = file.read_number("Manning coefficient");
    ComputationalCell& cell = *cells[static_cast<std::size_t>(k)];
    cell.set_friction(n);
    cell.add_source_term(&friction_terms.emplace_back(n));
  }
}

void PhysicalModel::setHydrodynamicConditions(utils::TextScanner& file) {
  for (int k = 0; k < n_cells; ++k) {
    file.begin_record("cell", k, n_cells);
    const double zs = file.read_number("free-surface level");
    const double qx = file.read_number("unit discharge qx");
    const double qy = file.read_number("unit discharge qy");
    cells[static_cast<std::size_t>(k)]->set_hydrodynamic_values(zs, qx, qy);
  }
}

void PhysicalModel::set_source_term_by_ID(utils::TextScanner& file,
                                          const std::vector<SourceTerm*>& terms) {
  constexpr int no_term = -1;
  std::map<int, SourceTerm*> by_id;
  for (SourceTerm* term : terms) by_id[term->getID()] = term;  // of two alike, the later counts
  for (int k = 0; k < n_cells; ++k) {
    file.begin_record("cell", k, n_cells);
    const int id = file.read_integer("source term ID");
    if (id == no_term) continue;
    const auto found = by_id.find(id);
    if (found == by_id.end()) {
      std::cout << "Error: source term ID " << id << " not found" << std::endl;
      utils::stop(1);
    }
    cells[static_cast<std::size_t>(k)]->add_source_term(found->second);
  }
}

void PhysicalModel::set_initial_infiltration(utils::TextScanner& file) {
  for (int k = 0; k < n_cells; ++k) {
    file.begin_record("cell", k, n_cells);
    cells[static_cast<std::size_t>(k)]->param.infiltrated_depth =
        file.read_number("infiltrated depth");
  }
}
