// The part of a flow that one of several ranks computes, and what all of them do together for the
// whole flow.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "engine/Engine.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "fields/PartLooks.hpp"
#include "fields/TableFields.hpp"
#include "fields/WholeOnFirst.hpp"
#include "fields/moving_cells.hpp"
#include "ranks/Group.hpp"
#include "ranks/RowPlan.hpp"
#include "ranks/share_of.hpp"

namespace fields {

/// How the ranks share a case.
struct RanksPlan {
  std::vector<ranks::Cells> cells;  ///< of every rank; on rank 0 alone
  int threads = 1;                  ///< of each
  engine::Processor processor = {};

  /// For utils/bytes.hpp: what all ranks know.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.threads, self.processor.instruction_set, self.processor.device);
  }
};

/// What became of the start of a rank.
struct RankStart {
  enum class Outcome { good, no_room_in_tables, failed };
  Outcome outcome = Outcome::good;
  std::string trouble = {};
  int threads = 0;  ///< that the system gave

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.outcome, self.trouble, self.threads);
  }
};

/// Every function is called on all ranks, in the same order. What it reads of the flow is there on
/// rank 0; cells and boundaries have the numbers of the whole case. No rank but 0 holds anything of
/// its size.
class FlowOfRank {
 public:
  /// Rank 0 deals out the parts of the case, one after the other; on other ranks nobody looks at
  /// the case. The group must outlive it. Where any rank could not start there is no flow on any,
  /// see start().
  FlowOfRank(const cases::Case& contents, const RanksPlan& plan, ranks::Group& group);
  FlowOfRank(const FlowOfRank&) = delete;
  FlowOfRank& operator=(const FlowOfRank&) = delete;

  /// On rank 0 the worst of all ranks, with the fewest threads; elsewhere only its outcome.
  const RankStart& start() const { return start_; }

  // What engine::Engine does together.
  double stable_step(double t) { return engine_->stable_step(t); }
  double advance(const StepTimes& times, const engine::Wishes& own);
  /// Whether any rank asked in the last step that the run ends.
  bool stop_is_wished() const { return engine_->wishes().stop; }
  /// Whether the ranks go on with the next step without being told, after one that left the clock
  /// so. They agree on that.
  bool goes_on(const Clock& clock) const;
  void keep_maxima(double arrival_depth) { engine_->keep_maxima(arrival_depth); }
  void note_maxima(double t) { engine_->note_maxima(t); }
  void watch();
  /// Between two steps, once both have started: the steps go on in another flow of the same ranks,
  /// among which it shares the cells otherwise. This one is not used any more.
  void move_to(FlowOfRank& next);

  /// For how long the steps have kept every rank busy since the last call, s; without waiting for
  /// each other. On all ranks.
  std::vector<double> seconds_of_ranks();

  // What rank 0 gathers; the others give nothing to be filled.
  void read(Field field, std::span<double> values);
  void read(Field field, std::span<const cases::Number> cells, std::span<double> values);
  CellState state(cases::Number cell);
  void read_inflows(std::vector<BoundaryInflow>& inflows);
  /// What every cell cost between the last two calls of seconds_of_ranks(), s.
  void read_work(std::span<double> values);
  void save(engine::State& state);
  void save_notes(engine::SavedNotes& notes);
  /// On rank 0: where the last step was not hyperbolic, if that is to be told.
  const std::optional<engine::NotHyperbolic>& not_hyperbolic() const { return not_hyperbolic_; }

  /// What is seen of all cells; on the other ranks anything.
  Seen see(const Look& look);
  void save_looks(std::vector<double>& infiltrated);

  // What the ranks of the rows gather, column by column.
  void read_rows(const std::vector<Field>& fields, std::vector<double>& values);
  /// x, y and z, m.
  void centres_of_rows(std::vector<double>& values);

  // What rank 0 hands out; it is not looked at on the others.
  void load(const engine::State& state);
  void load_notes(const engine::SavedNotes& notes);
  void load_looks(std::span<const double> infiltrated);

  /// Whether this rank computes a cell; on rank 0 without asking the others.
  bool owns(cases::Number cell) const { return part_.own_cell(cell) >= 0; }
  const engine::Engine& engine() const { return *engine_; }
  /// The case of its part, with the parameters of the whole one.
  const cases::Case& contents() const { return part_.contents; }

 private:
  class OwnPart;

  bool is_first() const { return group_.rank() == 0; }
  /// That of this rank; on rank 0 after it has dealt out those of all others.
  ranks::Share take_share(const cases::Case& contents);
  RankStart start_engine(const RanksPlan& plan);
  /// Makes one start of those of all ranks.
  void agree_on_start();
  void list_own_boundaries();
  void gather_not_hyperbolic();
  /// What the cells and boundaries of this rank have in another flow.
  NewRanks new_ranks_of_own(const FlowOfRank& next);
  /// That of the own cells and boundaries.
  void save_own(engine::State& state);
  void load_own(engine::State own);
  PartLooks& looks();
  const ranks::RowPlan& row_plan();
  const FlowPart& own_part();

  ranks::Group& group_;
  WholeOnFirst whole_;
  cases::Part part_;
  std::vector<cases::Number> own_boundaries_;  ///< of the part, those of its own cells
  std::unique_ptr<engine::Exchange> exchange_;
  std::unique_ptr<engine::Engine> engine_;
  std::unique_ptr<TableFields> fields_;
  std::unique_ptr<FlowPart> own_part_;
  std::unique_ptr<PartLooks> looks_;  ///< null: nobody has looked yet
  std::optional<ranks::RowPlan> row_plan_;
  bool is_watched_ = false;
  RankStart start_;
  std::optional<engine::NotHyperbolic> not_hyperbolic_;

  // Kept for their memory.
  std::vector<double> own_values_;
  engine::State own_state_;
};

/// On all ranks: lets the steps go on with the cells shared out as another plan says, if all can
/// start so; the case is looked at on rank 0. Answers whether they could.
bool recut(std::unique_ptr<FlowOfRank>& part, const cases::Case& contents, const RanksPlan& plan,
           ranks::Group& group);

}  // namespace fields
