// To be loaded before an MPI library: its reductions, in the thirtieth of which the process fails
// by an exception, as a card or a library may in the middle of a step, or lacks memory.
#include <mpi.h>
#include <sys/resource.h>

#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace {

void fail() {
  if (std::getenv("QUILLMERE_TEST_LACKS_MEMORY") == nullptr) {
    throw std::runtime_error("a reduction fails on purpose");
  }
  const rlimit less_than_there_is{1 << 20, 1 << 20};
  setrlimit(RLIMIT_AS, &less_than_there_is);
  std::vector<char>(std::size_t{1} << 30).front() = 1;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int MPI_Iallreduce(
    const void* sent, void* received, int count, MPI_Datatype type, MPI_Op operation,
    MPI_Comm communicator, MPI_Request* request) {
  static int calls = 0;
  if (++calls == 30) fail();
  return PMPI_Iallreduce(sent, received, count, type, operation, communicator, request);
}
