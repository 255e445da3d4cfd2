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
  /// MPI counts with an int, and some libraries fail well below its largest.
  static constexpr std::size_t largest_piece = 1 << 30;

  /// Within a session; every process of the communicator makes one. Any failure of MPI ends the
  /// job. No call moves more bytes than a piece; to be the same on all processes.
  explicit MpiGroup(MPI_Comm communicator = MPI_COMM_WORLD, std::size_t piece = largest_piece);
  ~MpiGroup() override;
  MpiGroup(const MpiGroup&) = delete;
  MpiGroup& operator=(const MpiGroup&) = delete;

  int rank() const override;
  int size() const override;
  int cores() const override { return cores_; }
  int rank_on_machine() const override { return machine_.rank; }
  int first_on_machine() const override { return machine_.first; }
  void broadcast(std::span<std::byte> bytes) override;
  void send(std::span<const std::byte> bytes, int to) override;
  void receive(std::span<std::byte> bytes, int from) override;
  std::vector<Message> send_to_some(std::vector<Message> sent) override;
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override;
  std::unique_ptr<Group> first(int members) override;
  std::unique_ptr<engine::Exchange> exchange(std::vector<Halo> halos) override;
  void break_up() override { *is_broken_ = true; }
  bool is_broken() const override { return *is_broken_; }

 private:
  /// Calls move(begin, count) for all bytes, piece by piece.
  template <class Bytes, class Move>
  void for_each_piece(Bytes bytes, const Move& move) const;
  /// The sizes of what others send to this rank, which tell theirs.
  std::vector<Message> receive_sizes(const std::vector<Message>& sent);

  /// Those of the communicator that are on the machine of this one.
  struct Machine {
    int ranks = 1, rank = 0;
    int first = 0;  ///< of them, as a rank of the communicator

    explicit Machine(MPI_Comm communicator);
  };

  MPI_Comm communicator_ = MPI_COMM_NULL;  ///< its own
  std::size_t piece_;
  Machine machine_;
  int rounds_ = 0;  ///< of messages to some
  int cores_;
  std::shared_ptr<bool> is_broken_ = std::make_shared<bool>(false);  ///< of all parts
};

}  // namespace ranks
