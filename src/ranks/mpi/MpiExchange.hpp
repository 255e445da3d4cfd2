// Ranks that are the processes of an MPI job.
#pragma once

#include <mpi.h>

#include <array>
#include <vector>

#include "engine/Exchange.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

/// That of this process. One contiguous message goes to every neighbour in a step, by requests that
/// are made once, and one reduction of doubles to all; nothing is sent of cells that are not ghosts
/// of others. All calls of MPI come from the thread that calls this: MPI_THREAD_FUNNELED will do.
class MpiExchange final : public engine::Exchange {
 public:
  /// Between initialisation and end of MPI; every process of the communicator makes one, of its own
  /// halos (see share_of).
  MpiExchange(MPI_Comm communicator, std::vector<Halo> halos);
  ~MpiExchange() override;
  MpiExchange(const MpiExchange&) = delete;
  MpiExchange& operator=(const MpiExchange&) = delete;

  void start_halo(engine::Tables& tables) override;
  void finish_halo(engine::Tables& tables) override;
  void start_minimum(const engine::StepMinimum& own) override;
  engine::StepMinimum finish_minimum() override;
  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override;

 private:
  struct Neighbour {
    Halo halo;
    std::vector<double> sent, received;
  };
  using Values = std::array<double, 4>;  ///< of an engine::StepMinimum

  /// Makes the requests for messages of so many columns, unless they are those that there are.
  void make_requests(int columns);
  void free_requests();

  MPI_Comm communicator_ = MPI_COMM_NULL;  ///< its own
  std::vector<Neighbour> neighbours_;
  int columns_ = 0;  ///< of the requests
  std::vector<MPI_Request> receives_, sends_;
  Values own_{}, agreed_{};
  MPI_Request minimum_ = MPI_REQUEST_NULL;
};

}  // namespace ranks
