// The flow of a case that several ranks compute. Rank 0 runs the program and has the flow; the
// others serve it.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "case/Diagnostics.hpp"
#include "fields/FlowOfRank.hpp"
#include "fields/RowsOfRank.hpp"
#include "fields/SharedCase.hpp"
#include "fields/orders.hpp"
#include "ranks/Balance.hpp"
#include "ranks/cut_along_curve.hpp"
#include "ranks/in_step.hpp"

namespace fields {

/// The ranks that share a flow.
struct RanksRequest {
  ranks::Group* group = nullptr;  ///< this is rank 0 of it; null: there is one rank
  /// The case as the ranks have read it together; null: rank 0 has all of it and deals it out.
  SharedCase* shared = nullptr;
  /// Whether all ranks find the files of a case under the names that this one has for them.
  bool can_read_files = false;
  /// The cells of every rank.
  std::function<std::vector<ranks::Cells>(const cases::Mesh& mesh, int ranks)> cut =
      ranks::cut_along_curve;
  /// Whether cells get other ranks in the course of the run where some have less to do than others.
  bool are_balanced = true;
  /// Bytes of text that go to rank 0 at once: so many that a disk is busy with them for longer than
  /// a message takes, and few beside the tables of a rank.
  std::size_t largest_text = std::size_t{16} << 20;
  ranks::WritersRequest writers = {};  ///< of tables
  /// Called after a step in which another rank was asked to end the run.
  std::function<void()> on_stop = {};
};

/// What is asked of it while it takes no questions throws. Where a rank fails alone, so does what
/// was asked for, and the group is broken.
class RanksFlow : public Flow {
 public:
  /// On rank 0, while the others serve; more ranks than cells take no part. Of a shared case
  /// `contents` needs no mesh and no fields. Case, diagnostics and group must outlive it. Throws as
  /// TablesFlow does, and std::runtime_error where a rank cannot start. `most_threads` of each
  /// rank, as in FlowRequest.
  RanksFlow(const cases::Case& contents, cases::Diagnostics& diagnostics,
            const RanksRequest& request, int most_threads, const engine::Processor& processor);
  ~RanksFlow() override;

  /// Between two steps: the cells of every rank that takes part are others from now on, unless one
  /// of them cannot start so. Answers whether they are.
  bool recut(const std::vector<ranks::Cells>& cells);
  /// How often that was done.
  int recuts() const { return recuts_; }
  /// For how long the steps have kept the ranks busy.
  const ranks::Balance& balance() const { return *balance_; }

  FlowScales scales() const override;
  double stable_step(double t) override;
  double advance(const StepTimes& times) override;
  void leave_alone_until(double t) override { pause_ = t; }
  bool takes_questions() const override { return !is_under_way_ && !group_->is_broken(); }

  void read(Field field, std::span<const cases::Number> cells,
            std::span<double> values) const override;
  CellState state(cases::Number cell) const override;
  std::unique_ptr<Ground> ground(const cases::Case& contents) const override;
  std::unique_ptr<Looks> looks(const cases::Case& contents) const override;
  std::unique_ptr<Rows> rows(const cases::Mesh& mesh, const RowsRequest& request) const override;
  std::unique_ptr<ValueRows> value_rows(const cases::Case& contents) const override;
  std::unique_ptr<SavedRows> saved_rows() const override;
  void load(const SavedFlow& saved, utils::ByteSource& rows) override;
  void load_books(const SavedFlow& saved, bool has_notes, Looks& looks,
                  utils::ByteSource& rows) override;
  ExecutionPath execution_path() const override;

  void keep_maxima(double arrival_depth) override;
  void note_maxima(double t) override;

  void watch() override;
  const physics::StepNotes& notes() const override { return part_->engine().notes(); }

 private:
  class LooksOfRanks;
  template <class Kind>
  class OfRanks;
  class RowsOfRanks;
  class ValueRowsOfRanks;
  class SavedRowsOfRanks;
  /// On all ranks.
  void load_rows(LoadRequest request, utils::ByteSource& rows);
  Seen see(Look look) const;

  /// Lets the first ranks make a flow.
  void call_members(const RanksRequest& request, Call::Kind kind, int members, int most_threads);
  // After that: the share of rank 0, of a case that it deals out or that all have read.
  ranks::Share share_of_whole(const RanksRequest& request, int most_threads);
  ranks::Share share_of_shared(const RanksRequest& request, int most_threads);

  /// The ranks, who wait for an order.
  ranks::Group& waiting_ranks() const;
  /// Gives them one, and does what they do by it.
  template <class Do>
  decltype(auto) together(const Order& order, const Do& do_it) const;
  double step_together(const StepTimes& times, const engine::Wishes& own);
  /// Lets all ranks begin with a step, after a look at their balance if one is due.
  void start_steps(const StepTimes& times);
  void look_at_balance();
  /// Gives the ranks cells that make about the same work for each, if that is worth it.
  void move_cells();

  const cases::Case& case_;
  MeshCounts counts_;
  cases::Diagnostics& diagnostics_;
  std::function<void()> on_stop_;
  std::size_t largest_text_;
  bool are_balanced_;
  RanksPlan plan_;
  std::unique_ptr<ranks::Group> group_;  ///< of the ranks that take part
  std::unique_ptr<FlowOfRank> part_;
  std::unique_ptr<RowsOfRank> rows_;
  mutable std::set<int> numbers_;  ///< of results that have rows
  bool has_started_ = false;       ///< with the steps
  bool is_under_way_ = false;  ///< the others have begun the next step, at the time of the clock
  Clock clock_;                ///< after the last step
  double pause_ = -HUGE_VAL;   ///< for which the next step asks, s
  int recuts_ = 0;
  std::optional<ranks::Balance> balance_;  ///< once the ranks have started
  int steps_since_look_ = 0;               ///< at the balance
};

template <class Do>
decltype(auto) RanksFlow::together(const Order& order, const Do& do_it) const {
  return ranks::in_step(waiting_ranks(), [&]() -> decltype(auto) {
    tell(*group_, order);
    return do_it();
  });
}

}  // namespace fields
