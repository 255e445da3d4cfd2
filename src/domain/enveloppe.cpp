// The envelope of maxima: the largest depth of every cell, written at a fixed interval.
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "utils/CellTable.hpp"

void Domain::write_enveloppe() {
  next_enveloppe_time += dt_enveloppe;
  Handoff::Umax.start([this] { Write_Umax(); });
}

void Domain::Write_Umax() {
  const auto& cells = model->cells;
  for (std::size_t i = 0; i < cells.size(); ++i) umax_buffer[i] = cells[i]->max_values.h;
  Handoff::Umax.release();

  utils::CellTable table(Globals::g_outputPath + "enveloppe.txt", "");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    table.begin_row(cells[i]->center.x) << cells[i]->center;
    table.begin_values() << umax_buffer[i];
    table.end_row();
  }
  table.commit();
}
