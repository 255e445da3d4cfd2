#include "model/cell_fields.hpp"

#include "case/read_fields.hpp"
#include "model/SWE_Exner.hpp"

void set_bed(PhysicalModel& model, const std::vector<double>& level) {
  for (std::size_t i = 0; i < level.size(); ++i) model.cells[i]->set_bed_rock_level(level[i]);
}

void set_sediment(PhysicalModel& model, const std::vector<double>& thickness) {
  for (std::size_t i = 0; i < thickness.size(); ++i) model.cells[i]->set_hs(thickness[i]);
}

void set_manning(PhysicalModel& model, const std::vector<double>& manning) {
  for (std::size_t i = 0; i < manning.size(); ++i) {
    model.cells[i]->set_friction(manning[i]);
    model.cells[i]->add_source_term(&model.friction_terms.emplace_back(manning[i]));
  }
}

void set_initial_state(PhysicalModel& model, const cases::CellFields& fields) {
  for (std::size_t i = 0; i < fields.level.size(); ++i) {
    model.cells[i]->set_hydrodynamic_values(fields.level[i], fields.qx[i], fields.qy[i]);
  }
}

void attach_terms(PhysicalModel& model, const std::vector<int>& numbers,
                  const std::vector<SourceTerm*>& terms) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] >= 0) model.cells[i]->add_source_term(terms[cases::at(numbers[i])]);
  }
}

void set_infiltrated(PhysicalModel& model, const std::vector<double>& depth) {
  for (std::size_t i = 0; i < depth.size(); ++i) {
    model.cells[i]->param.infiltrated_depth = depth[i];
  }
}

// The same from an open file, for a model built by hand.

namespace {

cases::CellFields read(utils::TextScanner& file, cases::Number n_cells, const cases::Key& key) {
  cases::CellFields fields;
  cases::read_cell_file(*cases::cell_file(key), file, n_cells, fields);
  return fields;
}

}  // namespace

using cases::key;

void PhysicalModel::setFixedBedLevel(utils::TextScanner& file) {
  const cases::CellFields fields = read(file, n_cells, key("model/conditions/fixed bed level"));
  set_bed(*this, fields.bed);
}

void SWE_Exner::setSedimentsLevel(utils::TextScanner& file) {
  const cases::CellFields fields =
      read(file, n_cells, key("model/conditions/initial sediments level"));
  set_sediment(*this, fields.sediment);
}

void PhysicalModel::setFriction(utils::TextScanner& file) {
  const cases::CellFields fields = read(file, n_cells, key("model/conditions/friction"));
  set_manning(*this, fields.manning);
}

void PhysicalModel::setHydrodynamicConditions(utils::TextScanner& file) {
  const cases::CellFields fields = read(file, n_cells, key("model/conditions/initial conditions"));
  set_initial_state(*this, fields);
}

void PhysicalModel::set_source_term_by_ID(utils::TextScanner& file,
                                          const std::vector<SourceTerm*>& terms) {
  std::vector<int> ids;
  for (const SourceTerm* term : terms) ids.push_back(term->getID());
  attach_terms(*this, cases::read_terms(file, n_cells, ids, cases::end_at_unknown_term), terms);
}

void PhysicalModel::set_initial_infiltration(utils::TextScanner& file) {
  const cases::CellFields fields = read(file, n_cells, key("model/sources/initial infiltration"));
  set_infiltrated(*this, fields.infiltrated);
}
