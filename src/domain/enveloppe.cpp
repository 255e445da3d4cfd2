// The envelope of maxima: the largest depth of every cell, written at a fixed interval.
#include "domain/Domain.hpp"
#include "utils/CellTable.hpp"

void Domain::write_enveloppe() {
  next_enveloppe_time += data_.dt_enveloppe;
  envelope_writer_.wait();
  flow_->read(fields::Field::largest_depth, umax_buffer);
  envelope_writer_.hand_over([this] { return Write_Umax(); });
}

bool Domain::Write_Umax() {
  utils::CellTable table(envelope_file_, "");
  for (cases::Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    const physics::SpacePoint center = case_.mesh.center_of(cell);
    table.add_row(center.x, center.y, center.z, {&umax_buffer[cases::at(cell)], 1});
  }
  return table.commit();
}
