// Whether the MPI library takes messages in the memory of a graphics card.
#pragma once

namespace ranks {

/// What the library says of itself on this machine, between initialisation and end of MPI; false
/// where it cannot be asked. Debian's libraries take none.
bool mpi_takes_memory_of_card();

}  // namespace ranks
