#include "ranks/InProcess.hpp"

#include <algorithm>
#include <optional>
#include <thread>

namespace ranks {

using cases::Number;
using engine::at;

/// What the ranks of a group have in common.
struct InProcess::Shared {
  explicit Shared(int ranks) : size(ranks), minimum(ranks), notes(ranks) {}

  /// That of the first members, or of one exchange of all; `which` of those that were asked for,
  /// one after the other.
  std::shared_ptr<Shared> part(int which, int members) {
    const std::lock_guard lock(mutex);
    std::shared_ptr<Shared>& found = parts[which];
    if (!found) found = std::make_shared<Shared>(members);
    return found;
  }

  const int size;
  Mailboxes<std::byte> messages;
  Mailboxes<std::optional<utils::Bytes>> parcels;  ///< that go to some: of the others each is empty
  Mailboxes<double> halos;
  Reduction<engine::StepMinimum> minimum;
  Reduction<physics::StepNotes> notes;
  std::mutex mutex;
  std::map<int, std::shared_ptr<Shared>> parts;
};

/// The exchange of one rank.
class InProcess::MemberExchange : public engine::Exchange {
 public:
  MemberExchange(std::shared_ptr<Shared> shared, int rank, std::vector<Halo> halos)
      : shared_(std::move(shared)) {
    for (Halo& halo : halos) {
      const int other = halo.neighbour;
      neighbours_.push_back({std::move(halo), shared_->halos.between(rank, other),
                             shared_->halos.between(other, rank)});
    }
  }

  void start_halo(engine::Tables& tables) override {
    for (const Neighbour& neighbour : neighbours_) {
      neighbour.to.post([&](std::vector<double>& values) {
        engine::for_each_halo_column(tables.cells, [&](const engine::Column& column) {
          for (const Number cell : neighbour.halo.sent) {
            values.push_back(column[at(tables.place[at(cell)])]);
          }
        });
      });
    }
  }

  void finish_halo(engine::Tables& tables) override {
    for (const Neighbour& neighbour : neighbours_) {
      neighbour.from.take([&](const std::vector<double>& values) {
        auto value = values.begin();
        engine::for_each_halo_column(tables.cells, [&](engine::Column& column) {
          for (const Number cell : neighbour.halo.received) {
            column[at(tables.place[at(cell)])] = *value++;
          }
        });
      });
    }
  }

  void start_minimum(const engine::StepMinimum& own) override {
    shared_->minimum.tell(own, engine::smallest_of);
  }
  engine::StepMinimum finish_minimum() override { return shared_->minimum.wait(minima_++); }

  physics::StepNotes unite(const physics::StepNotes& own, int limited_before) override {
    shared_->notes.tell(
        own, [&](const auto& a, const auto& b) { return engine::united(a, b, limited_before); });
    return shared_->notes.wait(notes_++);
  }

 private:
  struct Neighbour {
    Halo halo;
    Mailbox<double>&to, &from;
  };

  std::shared_ptr<Shared> shared_;
  std::vector<Neighbour> neighbours_;
  long minima_ = 0, notes_ = 0;  ///< rounds that this rank has seen
};

class InProcess::Member : public Group {
 public:
  Member(std::shared_ptr<Shared> shared, int rank) : shared_(std::move(shared)), rank_(rank) {}

  int rank() const override { return rank_; }
  int size() const override { return shared_->size; }
  int cores() const override {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()) / size());
  }
  int rank_on_machine() const override { return rank_; }

  void broadcast(std::span<std::byte> bytes) override {
    if (rank_ > 0) return receive(bytes, 0);
    for (int other = 1; other < size(); ++other) send(bytes, other);
  }
  void send(std::span<const std::byte> bytes, int to) override {
    shared_->messages.between(rank_, to).post(
        [&](std::vector<std::byte>& message) { message.assign(bytes.begin(), bytes.end()); });
  }
  void receive(std::span<std::byte> bytes, int from) override {
    shared_->messages.between(from, rank_).take([&](const std::vector<std::byte>& message) {
      std::copy(message.begin(), message.end(), bytes.begin());
    });
  }

  std::vector<Message> send_to_some(std::vector<Message> sent) override {
    std::vector<std::optional<utils::Bytes>> parcels(at(size()));
    for (Message& message : sent) parcels[at(message.rank)] = std::move(message.bytes);
    for (int other = 0; other < size(); ++other) {
      shared_->parcels.between(rank_, other).post([&](auto& values) {
        values.push_back(std::move(parcels[at(other)]));
      });
    }
    std::vector<Message> received;
    for (int other = 0; other < size(); ++other) {
      shared_->parcels.between(other, rank_).take([&](auto& values) {
        if (values.front()) received.push_back({other, *std::move(values.front())});
      });
    }
    return received;
  }
  void gather_all(std::span<const std::byte> own, std::span<std::byte> all) override {
    for (int other = 0; other < size(); ++other) send(own, other);
    for (int other = 0; other < size(); ++other) {
      receive(all.subspan(at(other) * own.size(), own.size()), other);
    }
  }

  std::unique_ptr<Group> first(int members) override {
    const int which = parts_++;
    if (rank_ >= members) return nullptr;
    return std::make_unique<Member>(shared_->part(which, members), rank_);
  }
  std::unique_ptr<engine::Exchange> exchange(std::vector<Halo> halos) override {
    return std::make_unique<MemberExchange>(shared_->part(parts_++, size()), rank_,
                                            std::move(halos));
  }

 private:
  std::shared_ptr<Shared> shared_;
  int rank_;
  int parts_ = 0;  ///< of what is shared, made so far
};

InProcess::InProcess(int ranks) : shared_(std::make_shared<Shared>(ranks)) {}

InProcess::~InProcess() = default;

std::unique_ptr<Group> InProcess::group(int rank) {
  return std::make_unique<Member>(shared_, rank);
}

}  // namespace ranks
