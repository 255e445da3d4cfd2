// Waiting for MPI. Libraries wait by looking again and again, some of them without ever leaving
// their core to another process: on a machine with more ranks and threads than cores that other one
// is often what they wait for.
#pragma once

#include <mpi.h>
#include <sched.h>

#include <vector>

namespace ranks {

/// Calls is_done(flag) until it sets the flag.
template <class IsDone>
void wait_until(const IsDone& is_done) {
  for (int flag = 0;;) {
    is_done(&flag);
    if (flag != 0) return;
    sched_yield();
  }
}

inline void wait_for(MPI_Request& request) {
  wait_until([&](int* flag) { MPI_Test(&request, flag, MPI_STATUS_IGNORE); });
}

inline void wait_for(std::vector<MPI_Request>& requests) {
  wait_until([&](int* flag) {
    MPI_Testall(static_cast<int>(requests.size()), requests.data(), flag, MPI_STATUSES_IGNORE);
  });
}

}  // namespace ranks
