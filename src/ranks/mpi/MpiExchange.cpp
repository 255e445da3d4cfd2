#include "ranks/mpi/MpiExchange.hpp"

#include <type_traits>
#include <utility>

#include "ranks/mpi/wait.hpp"

namespace ranks {

namespace {

using engine::at;

constexpr int tag_of_halos = 1;

/// As MPI asks for it.
void unite_notes(void* from, void* to, int* count, MPI_Datatype*) {
  static_assert(std::is_trivially_copyable_v<engine::NotedStep>);
  auto* const a = static_cast<engine::NotedStep*>(from);
  auto* const b = static_cast<engine::NotedStep*>(to);
  for (int k = 0; k < *count; ++k) b[k] = engine::united(a[k], b[k]);
}

int count_of(const std::vector<MPI_Request>& requests) { return static_cast<int>(requests.size()); }

}  // namespace

MpiExchange::MpiExchange(MPI_Comm communicator, const std::vector<Halo>& halos,
                         bool takes_memory_of_card, std::shared_ptr<const bool> is_broken)
    : cells_(cells_of(halos)),
      takes_memory_of_card_(takes_memory_of_card),
      is_broken_(std::move(is_broken)) {
  MPI_Comm_dup(communicator, &communicator_);
  for (const Halo& halo : halos) {
    neighbours_.push_back({halo.neighbour, halo.sent.size(), halo.received.size()});
  }
  MPI_Type_contiguous(sizeof(engine::NotedStep), MPI_BYTE, &noted_step_);
  MPI_Type_commit(&noted_step_);
  constexpr int knows_no_order = 1;
  MPI_Op_create(unite_notes, knows_no_order, &unite_);
}

MpiExchange::~MpiExchange() {
  if (*is_broken_) return;  // the others take no part any more
  free_requests();
  MPI_Op_free(&unite_);
  MPI_Type_free(&noted_step_);
  MPI_Comm_free(&communicator_);
}

void MpiExchange::free_requests() {
  for (auto* const requests : {&receives_, &sends_}) {
    for (MPI_Request& request : *requests) MPI_Request_free(&request);
    requests->clear();
  }
}

void MpiExchange::make_requests(const engine::PackedHalo& packed) {
  if (packed == packed_) return;
  free_requests();
  packed_ = packed;
  const double* sent = packed.sent;
  double* received = packed.received;
  const auto add = [&](auto make, auto*& values, std::size_t cells, int rank, auto& requests) {
    const std::size_t count = cells * at(packed.columns);
    make(values, static_cast<int>(count), MPI_DOUBLE, rank, tag_of_halos, communicator_,
         &requests.emplace_back());
    values += count;
  };
  for (const Neighbour& n : neighbours_) {
    add(MPI_Recv_init, received, n.received, n.rank, receives_);
    add(MPI_Send_init, sent, n.sent, n.rank, sends_);
  }
}

void MpiExchange::start_halo(const engine::PackedHalo& packed) {
  if (neighbours_.empty()) return;  // MPI_Startall does not take an empty list everywhere
  make_requests(packed);
  MPI_Startall(count_of(receives_), receives_.data());
  MPI_Startall(count_of(sends_), sends_.data());
}

void MpiExchange::finish_halo() {
  if (neighbours_.empty()) return;
  wait_for(receives_);
  wait_for(sends_);
}

void MpiExchange::start_minimum(const engine::StepMinimum& own) {
  own_ = {own.step, own.stop, own.pause, own.not_hyperbolic};
  // Doubles, not their bits: some libraries compare unsigned integers as if they had a sign.
  MPI_Iallreduce(own_.data(), agreed_.data(), static_cast<int>(own_.size()), MPI_DOUBLE, MPI_MIN,
                 communicator_, &minimum_);
}

engine::StepMinimum MpiExchange::finish_minimum() {
  wait_for(minimum_);
  return {agreed_[0], agreed_[1], agreed_[2], agreed_[3]};
}

void MpiExchange::start_uniting(const engine::NotedStep& own) {
  own_notes_ = own;
  MPI_Iallreduce(&own_notes_, &all_notes_, 1, noted_step_, unite_, communicator_, &notes_);
}

engine::NotedStep MpiExchange::finish_uniting() {
  wait_for(notes_);
  return all_notes_;
}

}  // namespace ranks
