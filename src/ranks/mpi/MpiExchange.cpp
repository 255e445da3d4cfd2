#include "ranks/mpi/MpiExchange.hpp"

#include <type_traits>
#include <utility>

#include "ranks/mpi/wait.hpp"

namespace ranks {

namespace {

using cases::Number;
using engine::at;

constexpr int tag_of_halos = 1;

int count_of(const std::vector<MPI_Request>& requests) { return static_cast<int>(requests.size()); }

}  // namespace

MpiExchange::MpiExchange(MPI_Comm communicator, std::vector<Halo> halos) {
  MPI_Comm_dup(communicator, &communicator_);
  for (Halo& halo : halos) neighbours_.push_back({std::move(halo), {}, {}});
}

MpiExchange::~MpiExchange() {
  free_requests();
  MPI_Comm_free(&communicator_);
}

void MpiExchange::free_requests() {
  for (auto* const requests : {&receives_, &sends_}) {
    for (MPI_Request& request : *requests) MPI_Request_free(&request);
    requests->clear();
  }
}

void MpiExchange::make_requests(int columns) {
  if (columns == columns_) return;
  free_requests();
  columns_ = columns;
  const auto add = [&](auto make, std::vector<double>& values, std::size_t cells, int neighbour,
                       std::vector<MPI_Request>& requests) {
    values.resize(cells * at(columns));
    make(values.data(), static_cast<int>(values.size()), MPI_DOUBLE, neighbour, tag_of_halos,
         communicator_, &requests.emplace_back());
  };
  for (Neighbour& n : neighbours_) {
    add(MPI_Recv_init, n.received, n.halo.received.size(), n.halo.neighbour, receives_);
    add(MPI_Send_init, n.sent, n.halo.sent.size(), n.halo.neighbour, sends_);
  }
}

void MpiExchange::start_halo(engine::Tables& tables) {
  if (neighbours_.empty()) return;  // MPI_Startall does not take an empty list everywhere
  int columns = 0;
  engine::for_each_halo_column(tables.cells, [&](const engine::Column&) { ++columns; });
  make_requests(columns);
  MPI_Startall(count_of(receives_), receives_.data());
  for (Neighbour& neighbour : neighbours_) {
    auto value = neighbour.sent.begin();
    engine::for_each_halo_column(tables.cells, [&](const engine::Column& column) {
      for (const Number cell : neighbour.halo.sent) *value++ = column[at(tables.place[at(cell)])];
    });
  }
  MPI_Startall(count_of(sends_), sends_.data());
}

void MpiExchange::finish_halo(engine::Tables& tables) {
  if (neighbours_.empty()) return;
  wait_for(receives_);
  for (const Neighbour& neighbour : neighbours_) {
    auto value = neighbour.received.begin();
    engine::for_each_halo_column(tables.cells, [&](engine::Column& column) {
      for (const Number cell : neighbour.halo.received) {
        column[at(tables.place[at(cell)])] = *value++;
      }
    });
  }
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

physics::StepNotes MpiExchange::unite(const physics::StepNotes& own, int limited_before) {
  static_assert(std::is_trivially_copyable_v<physics::StepNotes>);
  int ranks = 0;
  MPI_Comm_size(communicator_, &ranks);
  std::vector<physics::StepNotes> all(at(ranks));
  constexpr int size = sizeof(physics::StepNotes);
  MPI_Allgather(&own, size, MPI_BYTE, all.data(), size, MPI_BYTE, communicator_);
  physics::StepNotes notes = all.front();
  for (std::size_t rank = 1; rank < all.size(); ++rank) {
    notes = engine::united(notes, all[rank], limited_before);
  }
  return notes;
}

}  // namespace ranks
