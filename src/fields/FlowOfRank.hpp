// The part of a flow that one of several ranks computes, and what all of them do together for the
// whole flow.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/entries_of.hpp"
#include "engine/Engine.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "fields/PartLooks.hpp"
#include "fields/SavedFlow.hpp"
#include "fields/TableFields.hpp"
#include "fields/moving_cells.hpp"
#include "ranks/Group.hpp"
#include "ranks/RowPlan.hpp"
#include "ranks/deal_out_cells.hpp"
#include "ranks/share_of.hpp"

namespace fields {

/// How the ranks compute their parts of a case.
struct RanksPlan {
  int threads = 1;  ///< of each
  engine::Processor processor = {};

  /// For utils/bytes.hpp.
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
  int threads = 0;                       ///< that the system gave
  std::vector<std::string> run_on = {};  ///< instruction set or device, of every rank

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.outcome, self.trouble, self.threads, self.run_on);
  }
};

/// How cells might be dealt out anew, and what it changes.
struct NewDeal {
  ranks::Deal deal = {};
  double imbalance_before = 1.0, imbalance = 1.0;  ///< by the numbers of busy cells
};

/// Every function is called on all ranks, in the same order. What it reads of the flow is there on
/// rank 0; cells and boundaries have the numbers of the whole case. No rank but 0 holds anything of
/// its size, unless it is told the ranks of all cells.
class FlowOfRank {
 public:
  /// Of the share of this rank. The group must outlive it. Where any rank could not start there is
  /// no flow on any, see start(). `before`: the start of the flow that goes on in this one, which
  /// tells all but whether the ranks could start again.
  FlowOfRank(ranks::Share share, const RanksPlan& plan, ranks::Group& group,
             const RankStart* before = nullptr);
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
  /// where its cells, ghosts included, have these owners. This one is not used any more.
  void move_to(FlowOfRank& next, const std::vector<int>& owners);

  /// What every rank has done in the steps since the last call. On all ranks.
  std::vector<engine::Work> work_of_ranks();
  /// How the cells would be dealt out by where the water is; on rank 0, elsewhere anything.
  NewDeal deal_anew();
  /// The ranks that the cells, ghosts included, get by such a deal.
  std::vector<int> owners_by(const ranks::Deal& deal) const;
  /// The bands of a part that follows from it.
  void set_bands(const ranks::Deal& deal, cases::Part& part) const;
  /// The ranks of the cells here, of owners of all cells of the whole case.
  std::vector<int> owners_by(const std::vector<int>& of_all) const {
    return cases::entries_of(of_all, part_.cell_number);
  }

  // What rank 0 gathers; the others give nothing to be filled.
  void read(Field field, std::span<const cases::Number> cells, std::span<double> values);
  CellState state(cases::Number cell);
  /// On rank 0: where the last step was not hyperbolic, if that is to be told.
  const std::optional<engine::NotHyperbolic>& not_hyperbolic() const { return not_hyperbolic_; }

  /// What is seen of all cells; on the other ranks anything.
  Seen see(const Look& look);

  // What the ranks of the rows gather, column by column.
  void read_rows(const std::vector<Field>& fields, std::vector<double>& values);
  /// x, y and z, m.
  void centres_of_rows(std::vector<double>& values);
  /// At the start, m.
  void beds_of_rows(std::vector<double>& values);
  /// What is kept of the flow, and the columns of its rows.
  void save_rows(const SavedRequest& request, SavedFlow& saved, std::vector<double>& values);

  /// Takes what was saved from its rows, which rank 0 reads and hands to the ranks of the rows.
  /// Where the source throws, rank 0 ends with a Refusal, and nothing has changed.
  void load_rows(const LoadRequest& request, utils::ByteSource* rows);

  /// Whether this rank computes a cell; on rank 0 without asking the others.
  bool owns(cases::Number cell) const { return part_.own_cell(cell) >= 0; }
  const engine::Engine& engine() const { return *engine_; }
  /// The case of its part, with the parameters of the whole one.
  const cases::Case& contents() const { return part_.contents; }
  const cases::Part& part() const { return part_; }

 private:
  class OwnPart;

  bool is_first() const { return group_.rank() == 0; }
  RankStart start_engine(const RanksPlan& plan);
  /// Makes one start of those of all ranks.
  void agree_on_start();
  void agree_on_start_after(const RankStart& before);
  /// The squares by which cells are dealt out, from the first time on.
  struct Plots {
    ranks::Squares squares;
    std::vector<int> cells, along_curve;  ///< how many each holds, and an order of them; on rank 0
  };
  void lay_plots();
  /// The sums of the surfaces of the own cells in each, m.
  std::vector<double> surface_of_squares();
  void gather_not_hyperbolic();
  PartLooks& looks();
  /// Of the own cells.
  SavedCells saved_cells(const SavedRequest& request);
  void load_cells(const LoadRequest& request, const SavedCells& own);
  const ranks::RowPlan& row_plan();
  const FlowPart& own_part();

  ranks::Group& group_;
  cases::Part part_;
  std::unique_ptr<engine::Exchange> exchange_;
  std::unique_ptr<engine::Engine> engine_;
  std::unique_ptr<TableFields> fields_;
  std::unique_ptr<FlowPart> own_part_;
  std::unique_ptr<PartLooks> looks_;  ///< null: nobody has looked yet
  std::optional<ranks::RowPlan> row_plan_;
  std::shared_ptr<const Plots> plots_;
  std::vector<int> square_of_cell_;  ///< ghosts included; empty: nobody has asked yet
  bool is_watched_ = false;
  RankStart start_;
  std::optional<engine::NotHyperbolic> not_hyperbolic_;

  // Kept for their memory.
  std::vector<double> own_values_;
};

struct Recut {
  bool is_done = false;
  double seconds = 0.0;  ///< that it kept the busiest rank busy
};

/// On all ranks: lets the steps go on with other owners of the cells, those that `owners` gives of
/// the cells here, ghosts included, if all can start so.
Recut recut(std::unique_ptr<FlowOfRank>& flow, const std::vector<int>& owners,
            const RanksPlan& plan, ranks::Group& group);
/// The same by a deal that follows from its last one.
Recut recut(std::unique_ptr<FlowOfRank>& flow, const ranks::Deal& deal, const RanksPlan& plan,
            ranks::Group& group);

}  // namespace fields
