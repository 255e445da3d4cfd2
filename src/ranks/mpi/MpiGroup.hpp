// The processes of an MPI job as the ranks that share a run.
#pragma once

#include <mpi.h>

#include "ranks/Group.hpp"

namespace ranks {

/// MPI in this process, from its start to its end.
class MpiSession {
 public:
  /// MPI takes its own words out of the arguments. Throws std::runtime_error where its library
  /// knows no threads beside the one that calls it.
  MpiSession(int& argc, char**& argv);
  ~MpiSession();
  MpiSession(const MpiSession&) = delete;
  MpiSession& operator=(const MpiSession&) = delete;

  /// Ends all processes of the job at once.
  [[noreturn]] static void abort(int status);
};

class MpiGroup final : public Group {
 public:
  /// Within a session; every process of the communicator makes one. Any failure of MPI ends the
  /// job.
  explicit MpiGroup(MPI_Comm communicator = MPI_COMM_WORLD);
  ~MpiGroup() override;
  MpiGroup(const MpiGroup&) = delete;
  MpiGroup& operator=(const MpiGroup&) = delete;

  int rank() const override;
  int size() const override;
  int cores() const override { return cores_; }
  void broadcast(std::span<std::byte> bytes) override;
  void send(std::span<const std::byte> bytes, int to) override;
  void receive(std::span<std::byte> bytes, int from) override;
  std::unique_ptr<Group> first(int members) override;
  std::unique_ptr<engine::Exchange> exchange(std::vector<Halo> halos) override;

 private:
  MPI_Comm communicator_ = MPI_COMM_NULL;  ///< its own
  int cores_;
};

}  // namespace ranks
