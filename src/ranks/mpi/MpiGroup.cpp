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

using engine::at;

constexpr int tag_of_bytes = 2;
constexpr int tag_of_messages = 3;
/// Of two rounds, one after the other: a rank may be asked for the next one before it has heard
/// that this one is over.
constexpr int tags_of_sizes[] = {4, 5};

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

MpiGroup::MpiGroup(MPI_Comm communicator, std::size_t piece)
    : piece_(piece), machine_(communicator), cores_(cores_for_a_rank(machine_.ranks)) {
  MPI_Comm_dup(communicator, &communicator_);
}

MpiGroup::Machine::Machine(MPI_Comm communicator) {
  MPI_Comm here = MPI_COMM_NULL;
  MPI_Comm_split_type(communicator, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &here);
  MPI_Comm_size(here, &ranks);
  MPI_Comm_rank(here, &rank);
  MPI_Comm_rank(communicator, &first);
  MPI_Bcast(&first, 1, MPI_INT, 0, here);
  MPI_Comm_free(&here);
}

MpiGroup::~MpiGroup() {
  if (!is_broken()) MPI_Comm_free(&communicator_);  // which may wait for the others
}

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

template <class Bytes, class Move>
void MpiGroup::for_each_piece(Bytes bytes, const Move& move) const {
  do {
    const std::size_t count = std::min(piece_, bytes.size());
    move(bytes.data(), static_cast<int>(count));
    bytes = bytes.subspan(count);
  } while (!bytes.empty());
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

/// Nobody knows who sends to him, and nobody asks all others. Source: Hoefler, Siebert and
/// Lumsdaine (2010), Scalable communication protocols for dynamic sparse data exchange, PPoPP: a
/// barrier that a rank enters when all that it sent has been taken is over when there is nothing
/// left to come.
std::vector<Message> MpiGroup::receive_sizes(const std::vector<Message>& sent) {
  const int tag = tags_of_sizes[rounds_++ % 2];
  std::vector<std::uint64_t> sizes;
  std::vector<MPI_Request> sends(sent.size(), MPI_REQUEST_NULL);
  for (const Message& message : sent) sizes.push_back(message.bytes.size());
  for (std::size_t k = 0; k < sent.size(); ++k) {
    MPI_Issend(&sizes[k], 1, MPI_UINT64_T, sent[k].rank, tag, communicator_, &sends[k]);
  }
  std::vector<Message> received;
  MPI_Request barrier = MPI_REQUEST_NULL;
  bool is_in_barrier = false;
  wait_until([&](int* is_over) {
    int is_there = 0;
    MPI_Status status;
    MPI_Iprobe(MPI_ANY_SOURCE, tag, communicator_, &is_there, &status);
    if (is_there != 0) {
      std::uint64_t size = 0;
      MPI_Recv(&size, 1, MPI_UINT64_T, status.MPI_SOURCE, tag, communicator_, MPI_STATUS_IGNORE);
      received.push_back({status.MPI_SOURCE, utils::Bytes(size)});
    }
    if (is_in_barrier) {
      MPI_Test(&barrier, is_over, MPI_STATUS_IGNORE);
      return;
    }
    int all_are_taken = 1;
    if (!sends.empty()) {
      MPI_Testall(static_cast<int>(sends.size()), sends.data(), &all_are_taken,
                  MPI_STATUSES_IGNORE);
    }
    if (all_are_taken == 0) return;
    MPI_Ibarrier(communicator_, &barrier);
    is_in_barrier = true;
  });
  return received;
}

std::vector<Message> MpiGroup::send_to_some(std::vector<Message> sent) {
  std::vector<Message> received = receive_sizes(sent);
  std::sort(received.begin(), received.end(),
            [](const Message& a, const Message& b) { return a.rank < b.rank; });
  std::vector<MPI_Request> requests;
  for (Message& message : received) {
    for_each_piece(std::span(message.bytes), [&](std::byte* begin, int count) {
      MPI_Irecv(begin, count, MPI_BYTE, message.rank, tag_of_messages, communicator_,
                &requests.emplace_back());
    });
  }
  for (const Message& message : sent) {
    for_each_piece(std::span(message.bytes), [&](const std::byte* begin, int count) {
      MPI_Isend(begin, count, MPI_BYTE, message.rank, tag_of_messages, communicator_,
                &requests.emplace_back());
    });
  }
  if (!requests.empty()) wait_for(requests);
  return received;
}

void MpiGroup::gather_all(std::span<const std::byte> own, std::span<std::byte> all) {
  const std::size_t ranks = at(size());
  const std::size_t piece = std::max<std::size_t>(1, piece_ / ranks);
  utils::Bytes pieces;
  for (std::size_t first = 0; first < own.size(); first += piece) {
    const std::size_t count = std::min(piece, own.size() - first);
    const auto of_each = static_cast<int>(count);
    const bool is_all = count == own.size();
    if (!is_all) pieces.resize(ranks * count);
    std::byte* const to = is_all ? all.data() : pieces.data();
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Iallgather(own.data() + first, of_each, MPI_BYTE, to, of_each, MPI_BYTE, communicator_,
                   &request);
    wait_for(request);
    if (is_all) return;
    for (std::size_t rank = 0; rank < ranks; ++rank) {
      std::copy_n(pieces.data() + rank * count, count, all.data() + rank * own.size() + first);
    }
  }
}

std::unique_ptr<Group> MpiGroup::first(int members) {
  const int own = rank();
  MPI_Comm part = MPI_COMM_NULL;
  MPI_Comm_split(communicator_, own < members ? 0 : MPI_UNDEFINED, own, &part);
  if (part == MPI_COMM_NULL) return nullptr;
  auto group = std::make_unique<MpiGroup>(part, piece_);
  group->is_broken_ = is_broken_;
  MPI_Comm_free(&part);
  return group;
}

std::unique_ptr<engine::Exchange> MpiGroup::exchange(std::vector<Halo> halos) {
  return std::make_unique<MpiExchange>(communicator_, halos, mpi_takes_memory_of_card(),
                                       is_broken_);
}

}  // namespace ranks
