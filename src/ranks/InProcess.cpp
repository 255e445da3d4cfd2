#include "ranks/InProcess.hpp"

#include <algorithm>
#include <optional>
#include <thread>

namespace ranks {

using cases::Number;
using engine::at;

/// What the ranks of a group have in common.
struct InProcess::Shared {
  Shared(std::shared_ptr<Meeting> place, int ranks, bool memory_of_card)
      : meeting(std::move(place)),
        size(ranks),
        takes_memory_of_card(memory_of_card),
        messages(*meeting),
        parcels(*meeting),
        halos(*meeting),
        minimum(*meeting, ranks),
        notes(*meeting, ranks) {}

  /// That of the first members, or of one exchange of all; `which` of those that were asked for,
  /// one after the other.
  std::shared_ptr<Shared> part(int which, int members) {
    const std::lock_guard lock(mutex);
    std::shared_ptr<Shared>& found = parts[which];
    if (!found) found = std::make_shared<Shared>(meeting, members, takes_memory_of_card);
    return found;
  }

  const std::shared_ptr<Meeting> meeting;  ///< one for all parts
  const int size;
  const bool takes_memory_of_card;
  Mailboxes<std::byte> messages;
  Mailboxes<std::optional<utils::Bytes>> parcels;  ///< that go to some: of the others each is empty
  Mailboxes<double> halos;
  Reduction<engine::StepMinimum> minimum;
  Reduction<engine::NotedStep> notes;
  std::mutex mutex;
  std::map<int, std::shared_ptr<Shared>> parts;
};

/// The exchange of one rank.
class InProcess::MemberExchange : public engine::Exchange {
 public:
  MemberExchange(std::shared_ptr<Shared> shared, int rank, const std::vector<Halo>& halos,
                 bool takes_memory_of_card)
      : shared_(std::move(shared)),
        cells_(cells_of(halos)),
        takes_memory_of_card_(takes_memory_of_card) {
    for (const Halo& halo : halos) {
      const int other = halo.neighbour;
      neighbours_.push_back({halo.sent.size(), shared_->halos.between(rank, other),
                             shared_->halos.between(other, rank)});
    }
  }

  const engine::HaloCells& halo() const override { return cells_; }
  bool takes_memory_of_card() const override { return takes_memory_of_card_; }

  void start_halo(const engine::PackedHalo& packed) override {
    const double* value = packed.sent;
    for (const Neighbour& neighbour : neighbours_) {
      const double* const end = value + neighbour.sent * at(packed.columns);
      neighbour.to.post([&](std::vector<double>& values) { values.assign(value, end); });
      value = end;
    }
    received_ = packed.received;
  }

  void finish_halo() override {
    double* value = received_;
    for (const Neighbour& neighbour : neighbours_) {
      neighbour.from.take([&](const std::vector<double>& values) {
        value = std::copy(values.begin(), values.end(), value);
      });
    }
  }

  void start_minimum(const engine::StepMinimum& own) override {
    shared_->minimum.tell(own, engine::smallest_of);
  }
  engine::StepMinimum finish_minimum() override { return shared_->minimum.wait(minima_++); }

  void start_uniting(const engine::NotedStep& own) override {
    shared_->notes.tell(own, [](const auto& a, const auto& b) { return engine::united(a, b); });
  }
  engine::NotedStep finish_uniting() override { return shared_->notes.wait(notes_++); }

 private:
  struct Neighbour {
    std::size_t sent;  ///< cells
    Mailbox<double>&to, &from;
  };

  std::shared_ptr<Shared> shared_;
  engine::HaloCells cells_;
  bool takes_memory_of_card_;
  std::vector<Neighbour> neighbours_;
  double* received_ = nullptr;   ///< of the halo that is on its way
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
  int first_on_machine() const override { return 0; }

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
    return std::make_unique<MemberExchange>(shared_->part(parts_++, size()), rank_, halos,
                                            shared_->takes_memory_of_card);
  }

  void break_up() override { shared_->meeting->break_up(); }
  bool is_broken() const override { return shared_->meeting->is_broken(); }

 private:
  std::shared_ptr<Shared> shared_;
  int rank_;
  int parts_ = 0;  ///< of what is shared, made so far
};

InProcess::InProcess(int ranks, bool takes_memory_of_card)
    : shared_(std::make_shared<Shared>(std::make_shared<Meeting>(), ranks, takes_memory_of_card)) {}

InProcess::~InProcess() = default;

std::unique_ptr<Group> InProcess::group(int rank) {
  return std::make_unique<Member>(shared_, rank);
}

}  // namespace ranks
