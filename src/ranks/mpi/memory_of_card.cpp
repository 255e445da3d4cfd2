#include "ranks/mpi/memory_of_card.hpp"

#include <mpi.h>
// Open MPI and its kin tell it by an extension, MPICH and its kin by mpi.h.
#if __has_include(<mpi-ext.h>)
#include <mpi-ext.h>
#endif

namespace ranks {

bool mpi_takes_memory_of_card() {
#if defined(MPIX_CUDA_AWARE_SUPPORT)
  return MPIX_Query_cuda_support() == 1;
#elif defined(MPIX_GPU_SUPPORT_CUDA)
  int is_taken = 0;
  return MPIX_GPU_query_support(MPIX_GPU_SUPPORT_CUDA, &is_taken) == MPI_SUCCESS && is_taken != 0;
#else
  return false;
#endif
}

}  // namespace ranks
