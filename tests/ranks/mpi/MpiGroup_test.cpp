// What the processes of an MPI job do together, in whole pieces and in ones of a few bytes.
#include "ranks/mpi/MpiGroup.hpp"

#include <gtest/gtest.h>

#include "ranks/expect_collectives.hpp"

TEST(MpiGroup, SendsToSomeWhatTheyGet) {
  for (const std::size_t piece : {ranks::MpiGroup::largest_piece, std::size_t{13}}) {
    ranks::MpiGroup group(MPI_COMM_WORLD, piece);
    test_ranks::expect_messages_to_some(group);
  }
}

TEST(MpiGroup, GathersTheSameOnAll) {
  for (const std::size_t piece : {ranks::MpiGroup::largest_piece, std::size_t{13}}) {
    ranks::MpiGroup group(MPI_COMM_WORLD, piece);
    test_ranks::expect_gathered_by_all(group);
    test_ranks::expect_ranks_of_a_machine(group);
  }
}

TEST(MpiGroup, SendsAndBroadcastsInPieces) {
  ranks::MpiGroup group(MPI_COMM_WORLD, 13);
  const utils::Bytes expected = test_ranks::some_bytes(100, 5);
  utils::Bytes bytes = group.rank() == 0 ? expected : utils::Bytes(expected.size());
  group.broadcast(bytes);
  EXPECT_TRUE(bytes == expected);
  const int last = group.size() - 1;
  if (last == 0) return;
  if (group.rank() == last) group.send(expected, 0);
  if (group.rank() > 0) return;
  utils::Bytes received(expected.size());
  group.receive(received, last);
  EXPECT_TRUE(received == expected);
}
