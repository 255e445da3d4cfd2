// To be loaded before an MPI library: its reductions, of which the thirtieth fails by an exception,
// as a card or a library may in the middle of a step.
#include <mpi.h>

#include <stdexcept>

extern "C" __attribute__((visibility("default"))) int MPI_Iallreduce(
    const void* sent, void* received, int count, MPI_Datatype type, MPI_Op operation,
    MPI_Comm communicator, MPI_Request* request) {
  static int calls = 0;
  if (++calls == 30) throw std::runtime_error("a reduction fails on purpose");
  return PMPI_Iallreduce(sent, received, count, type, operation, communicator, request);
}
