// What a run did and how well, as a JSON file: why it ended, where its time went, its books, the
// cells that set its steps, its largest velocities, and what it made of its data file.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "case/Case.hpp"
#include "case/DataFileReader.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "physics/flow_extremes.hpp"
#include "report/PhaseClock.hpp"
#include "report/StepHistory.hpp"
#include "report/VolumeLedger.hpp"
#include "report/WaterLooks.hpp"
#include "utils/bytes.hpp"

class RunReport {
 public:
  /// Throws std::runtime_error if no file of that name can be made.
  RunReport(std::string file, std::string data_file);

  /// What became of the keys of the data file, and the span that it asks for, s.
  void take_data_file(const utils::KeyUses& uses, double t_start, double t_end);
  /// From now on the wall time counts for this phase.
  void enter(Phase phase) { clock_.enter(phase); }
  /// The steps of the flow of a case begin, which must live until the report is written, as must
  /// the clock and the looks at the flow. The clock stands at its start and the first step is set.
  void begin(fields::Flow& flow, const cases::Case& contents, const fields::Clock& clock,
             const WaterLooks& looks);
  /// Goes on from the books of an earlier run, after begin(). Throws utils::BadBytes if they are
  /// none.
  void load(const utils::Bytes& books);
  /// The books up to now, in place of what `books` holds.
  void save(utils::Bytes& books) const { utils::put_into(books, *this); }
  /// From a time on (s) the run goes on from a checkpoint, with the books of its rain.
  void continue_from(double t, const std::vector<physics::RainClock>& rain_clocks, bool has_books);

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(*self.ledger_, self.history_, self.steps_, self.lost_at_step_, self.lost_at_t_,
          self.fastest_, self.most_rapid_, self.first_film_, self.steps_with_films_,
          self.most_films_, self.what_failed_);
    std::string failure = self.failure_.dump();
    visit(failure);
    if constexpr (!std::is_const_v<Self>) self.failure_ = json_of(failure);
    visit(self.books_since_);
  }
  /// A step of dt (s), which began at t (s), has been computed, and the clock moved.
  void add_step(double t, double dt);
  /// Whether a state was found not to be a number after the last step, for the first time.
  bool has_just_lost_a_state() const { return steps_ == lost_at_step_; }
  bool has_failure() const { return !failure_.is_null(); }
  /// Describes a failure in a cell, in whose instant a snapshot was written. Only the first one of
  /// a run is described.
  void add_failure(const std::string& what, cases::Number cell, const std::string& snapshot);
  /// Writes the file. `status` is the exit status, `message` what was said about an early end.
  /// False if the file is not complete, which has been said.
  bool write(int status, const std::string& message);

 private:
  using json = nlohmann::ordered_json;

  /// The largest value of the run, and the state that had it.
  struct Peak {
    physics::FlowRecord record;
    double t = 0.0;  ///< s
    fields::CellState state = {};

    template <class Self, class Visit>
    static void visit_parts(Self& self, const Visit& visit) {
      visit(self.record, self.t, self.state);
    }
  };

  /// Of a text that dump() wrote; throws utils::BadBytes for another one.
  static json json_of(const std::string& text);
  void note_state();
  void note_peak(Peak& peak, const physics::FlowRecord& record) const;
  void note_films(const physics::StepNotes& notes);
  json place_of(cases::Number cell) const;
  json step_json(const StepRecord& step) const;
  json peak_json(const Peak& peak, const char* name, double value) const;
  json last_steps() const;
  json outcome(int status, const std::string& message) const;
  json simulated_time() const;
  json wall_times() const;
  json execution() const;
  json steps() const;
  json velocity() const;
  json not_a_number() const;
  json below_zero() const;
  json films() const;
  json sighting(const Sighting& first) const;
  json keys() const;
  void add_what_the_flow_tells(json& report) const;

  std::string file_;
  std::string data_file_;
  utils::KeyUses key_uses_;
  PhaseClock clock_;

  double t_start_ = 0.0, t_end_ = 0.0;           ///< s
  const fields::Clock* clock_of_run_ = nullptr;  ///< null before the steps
  fields::Flow* flow_ = nullptr;                 ///< null before the steps
  const cases::Case* case_ = nullptr;
  std::unique_ptr<fields::Ground> ground_;
  const WaterLooks* looks_ = nullptr;
  std::unique_ptr<VolumeLedger> ledger_;
  cases::Number smallest_cell_ = -1;  ///< of the mesh
  StepHistory history_;
  long steps_ = 0;          ///< computed
  long lost_at_step_ = -1;  ///< after which a state was first found not to be a number
  double lost_at_t_ = 0.0;  ///< s
  Peak fastest_, most_rapid_;
  Peak first_film_;  ///< the most rapid one at the first time that had any
  long steps_with_films_ = 0;
  int most_films_ = 0;
  json failure_;             ///< the first one
  std::string what_failed_;  ///< last
  /// Where the books begin at a checkpoint that had none, s.
  std::optional<double> books_since_;
  std::optional<double> continued_at_;  ///< s
};
