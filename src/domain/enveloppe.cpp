// The envelope of maxima: the largest depth of every cell, written at a fixed interval.
#include "domain/Domain.hpp"

void Domain::write_enveloppe() {
  next_enveloppe_time += data_.dt_enveloppe;
  envelope_writer_.wait();
  envelope_.gather(*flow_);
  Write_Umax();
}

void Domain::Write_Umax() { envelope_.hand_over(envelope_writer_, envelope_file_, ""); }
