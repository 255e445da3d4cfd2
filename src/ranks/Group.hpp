// The ranks that share a run, as one of them sees them.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

#include "engine/Exchange.hpp"
#include "ranks/share_of.hpp"
#include "utils/bytes.hpp"

namespace ranks {

/// Bytes and the other rank: where they go to, or where they came from.
struct Message {
  int rank;
  utils::Bytes bytes;
};

/// What a rank ends with because another one has broken up their group.
class BrokenGroup : public std::runtime_error {
 public:
  BrokenGroup() : std::runtime_error("another rank has failed") {}
};

/// Every rank calls the same functions in the same order, on one thread; to each send belongs a
/// receive on the other side.
class Group {
 public:
  virtual ~Group() = default;

  /// From 0 on.
  virtual int rank() const = 0;
  virtual int size() const = 0;
  /// Cores that this rank may use, at least 1: those of its machine, shared among the ranks there.
  virtual int cores() const = 0;

  /// From 0 on, among those of the same machine.
  virtual int rank_on_machine() const = 0;
  /// The first rank of that machine.
  virtual int first_on_machine() const = 0;

  /// Bytes of rank 0, for all others.
  virtual void broadcast(std::span<std::byte> bytes) = 0;
  virtual void send(std::span<const std::byte> bytes, int to) = 0;
  virtual void receive(std::span<std::byte> bytes, int from) = 0;

  /// Bytes to some ranks, at most one message to each; answers what was sent to this one, by
  /// ascending senders. All ranks call it, also those with nothing to send.
  virtual std::vector<Message> send_to_some(std::vector<Message> sent) = 0;
  /// As many bytes from every rank, in the order of the ranks, on every one.
  virtual void gather_all(std::span<const std::byte> own, std::span<std::byte> all) = 0;

  /// The first ranks of this group as one of their own; null on the others.
  virtual std::unique_ptr<Group> first(int members) = 0;
  /// What the engines of these ranks exchange in their steps; of other halos as often as called.
  virtual std::unique_ptr<engine::Exchange> exchange(std::vector<Halo> halos) = 0;

  /// This rank has failed where the others wait for it, in this group or in another part of the
  /// same ranks: there is nothing that they could do together any more. Threads that wait for it
  /// end with a BrokenGroup; processes wait until main() ends their job.
  virtual void break_up() = 0;
  /// Whether this rank knows of that.
  virtual bool is_broken() const = 0;
};

}  // namespace ranks
