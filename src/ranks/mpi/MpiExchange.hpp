// Ranks that are the processes of an MPI job.
#pragma once

#include <mpi.h>

#include <array>
#include <memory>
#include <vector>

#include "engine/Exchange.hpp"
#include "ranks/mpi/memory_of_card.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

/// That of this process. One contiguous message goes to every neighbour in a step, by requests that
/// are made once for a halo that stays where it is, and one reduction to all, of doubles or of
/// notes; nothing is sent of cells that are not ghosts of others. All calls of MPI come from the
/// thread that calls this: MPI_THREAD_FUNNELED will do.
class MpiExchange final : public engine::Exchange {
 public:
  /// Between initialisation and end of MPI; every process of the communicator makes one, of its own
  /// halos (see share_of). Where their group is broken by then, it leaves what is under way to the
  /// end of the job.
  MpiExchange(MPI_Comm communicator, const std::vector<Halo>& halos,
              bool takes_memory_of_card = mpi_takes_memory_of_card(),
              std::shared_ptr<const bool> is_broken = std::make_shared<bool>(false));
  ~MpiExchange() override;
  MpiExchange(const MpiExchange&) = delete;
  MpiExchange& operator=(const MpiExchange&) = delete;

  const engine::HaloCells& halo() const override { return cells_; }
  bool takes_memory_of_card() const override { return takes_memory_of_card_; }
  void start_halo(const engine::PackedHalo& packed) override;
  void finish_halo() override;
  void start_minimum(const engine::StepMinimum& own) override;
  engine::StepMinimum finish_minimum() override;
  void start_uniting(const engine::NotedStep& own) override;
  engine::NotedStep finish_uniting() override;

 private:
  struct Neighbour {
    int rank;
    std::size_t sent, received;  ///< cells
  };
  using Values = std::array<double, 4>;  ///< of an engine::StepMinimum

  /// Makes the requests for the messages of a halo, unless they are those that there are.
  void make_requests(const engine::PackedHalo& packed);
  void free_requests();

  MPI_Comm communicator_ = MPI_COMM_NULL;  ///< its own
  engine::HaloCells cells_;
  std::vector<Neighbour> neighbours_;
  bool takes_memory_of_card_;
  std::shared_ptr<const bool> is_broken_;
  engine::PackedHalo packed_{};  ///< that of the requests
  std::vector<MPI_Request> receives_, sends_;
  Values own_{}, agreed_{};
  MPI_Request minimum_ = MPI_REQUEST_NULL;
  engine::NotedStep own_notes_{}, all_notes_{};
  MPI_Datatype noted_step_ = MPI_DATATYPE_NULL;
  MPI_Op unite_ = MPI_OP_NULL;
  MPI_Request notes_ = MPI_REQUEST_NULL;
};

}  // namespace ranks
