#include "ranks/mpi/MpiGroup.hpp"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "ranks/mpi/MpiExchange.hpp"
#include "ranks/mpi/wait.hpp"

namespace ranks {

namespace {

constexpr int tag_of_bytes = 2;

/// Calls move(begin, count) for all bytes, piece by piece: MPI counts them with an int.
template <class Bytes, class Move>
void for_each_piece(Bytes bytes, const Move& move) {
  constexpr std::size_t largest = 1 << 30;
  do {
    const std::size_t count = std::min(largest, bytes.size());
    move(bytes.data(), static_cast<int>(count));
    bytes = bytes.subspan(count);
  } while (!bytes.empty());
}

int ranks_on_this_machine(MPI_Comm communicator) {
  MPI_Comm here = MPI_COMM_NULL;
  MPI_Comm_split_type(communicator, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &here);
  int ranks = 1;
  MPI_Comm_size(here, &ranks);
  MPI_Comm_free(&here);
  return ranks;
}

/// Whoever starts the job may have bound its processes to cores, or may have left that to them.
int cores_for_a_rank(int ranks_here) {
  const auto all = static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
  cpu_set_t bound;
  const bool is_known = sched_getaffinity(0, sizeof bound, &bound) == 0;
  const int own = is_known ? CPU_COUNT(&bound) : all;
  return std::max(1, std::min(own, all / ranks_here));
}

}  // namespace

MpiSession::MpiSession(int& argc, char**& argv) {
  int provided = MPI_THREAD_SINGLE;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
  if (provided >= MPI_THREAD_FUNNELED) return;
  MPI_Finalize();
  throw std::runtime_error("Error. The MPI library was built without support of threads.");
}

MpiSession::~MpiSession() { MPI_Finalize(); }

void MpiSession::abort(int status) {
  MPI_Abort(MPI_COMM_WORLD, status);
  std::abort();
}

MpiGroup::MpiGroup(MPI_Comm communicator)
    : cores_(cores_for_a_rank(ranks_on_this_machine(communicator))) {
  MPI_Comm_dup(communicator, &communicator_);
}

MpiGroup::~MpiGroup() { MPI_Comm_free(&communicator_); }

int MpiGroup::rank() const {
  int rank = 0;
  MPI_Comm_rank(communicator_, &rank);
  return rank;
}

int MpiGroup::size() const {
  int size = 1;
  MPI_Comm_size(communicator_, &size);
  return size;
}

void MpiGroup::broadcast(std::span<std::byte> bytes) {
  for_each_piece(bytes, [this](std::byte* begin, int count) {
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Ibcast(begin, count, MPI_BYTE, 0, communicator_, &request);
    wait_for(request);
  });
}

void MpiGroup::send(std::span<const std::byte> bytes, int to) {
  for_each_piece(bytes, [&](const std::byte* begin, int count) {
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Isend(begin, count, MPI_BYTE, to, tag_of_bytes, communicator_, &request);
    wait_for(request);
  });
}

void MpiGroup::receive(std::span<std::byte> bytes, int from) {
  for_each_piece(bytes, [&](std::byte* begin, int count) {
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Irecv(begin, count, MPI_BYTE, from, tag_of_bytes, communicator_, &request);
    wait_for(request);
  });
}

std::unique_ptr<Group> MpiGroup::first(int members) {
  const int own = rank();
  MPI_Comm part = MPI_COMM_NULL;
  MPI_Comm_split(communicator_, own < members ? 0 : MPI_UNDEFINED, own, &part);
  if (part == MPI_COMM_NULL) return nullptr;
  auto group = std::make_unique<MpiGroup>(part);
  MPI_Comm_free(&part);
  return group;
}

std::unique_ptr<engine::Exchange> MpiGroup::exchange(std::vector<Halo> halos) {
  return std::make_unique<MpiExchange>(communicator_, std::move(halos));
}

}  // namespace ranks
