// Looks at the water of a run, every so many steps, for what no water does: depths below zero,
// soils that give out water, films that race. A look reads columns only, so that it costs a small
// part of the steps between two; what happens between them and is gone at the next remains unseen.
#pragma once

#include <memory>

#include "case/Case.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "utils/bytes.hpp"

/// When and where something was seen first; cell -1: never.
struct Sighting {
  double t = 0.0;  ///< s
  cases::Number cell = -1;

  bool is_any() const { return cell >= 0; }

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.t, self.cell);
  }
};

class WaterLooks {
 public:
  static constexpr long steps_between = 64;

  /// Begins with a look. All that is given must outlive it.
  WaterLooks(const fields::Flow& flow, const cases::Case& contents, const fields::Clock& clock);

  /// Looks at the present state, if that has not been done.
  void look();
  /// After so many further steps.
  bool is_due(long further = 0) const { return clock_.steps + further >= due_after(); }
  /// The step after which the next look is due.
  long due_after() const { return looked_at_ + steps_between; }

  /// Of the last look; without a depth below zero it holds nothing else either.
  const fields::ColumnSurvey& depths() const { return depths_; }
  /// In the deepest of the cells that were below zero.
  const Sighting& first_below_zero() const { return first_below_zero_; }

  /// By how much infiltrated depths were seen to fall, m3: of soils that recover, which makes them
  /// fall too, only what fell below zero.
  double given_out() const { return given_out_.value(); }
  /// Where it was most.
  const Sighting& first_given_out() const { return first_given_out_; }

  long looks() const { return looks_; }
  long most_films() const { return most_films_; }  ///< cells that are films at one look
  /// In the cell of the largest Froude number, and its state.
  const Sighting& first_film() const { return first_film_; }
  const fields::CellState& state_of_first_film() const { return state_of_first_film_; }

  /// What sees them; what it remembers of cells is not among the parts below.
  fields::Looks& at_cells() const { return *seen_; }

  /// All else that further looks go on with.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.looked_at_, self.looks_, self.most_films_, self.depths_, self.given_out_,
          self.first_below_zero_, self.first_given_out_, self.first_film_,
          self.state_of_first_film_);
  }

 private:
  void note_depths_below_zero(const fields::WaterSeen& seen);
  void note_films(const fields::WaterSeen& seen);
  void note_given_out(const fields::WaterSeen& seen);

  const fields::Flow& flow_;
  const fields::Clock& clock_;
  std::unique_ptr<fields::Looks> seen_;

  long looked_at_ = -1;  ///< step
  long looks_ = 0, most_films_ = 0;
  fields::ColumnSurvey depths_;
  utils::ExactSum given_out_;
  Sighting first_below_zero_, first_given_out_, first_film_;
  fields::CellState state_of_first_film_;
};
