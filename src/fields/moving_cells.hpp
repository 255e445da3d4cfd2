// Cells that get other ranks between two steps, with all that the steps to come need to know.
#pragma once

#include <optional>
#include <vector>

#include "fields/parts_of_states.hpp"
#include "ranks/Group.hpp"

namespace fields {

struct MovingCells {
  std::vector<cases::Number> numbers;  ///< in the whole case, ascending; columns are in their order
  engine::State state;
  std::optional<engine::SavedNotes> notes;  ///< of steps that are watched
  std::vector<double> infiltrated;          ///< at the last look, see PartLooks; or none
  std::vector<char> awake;                  ///< see Engine

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.numbers, self.state, self.notes, self.infiltrated, self.awake);
  }
};

/// Called by all ranks: every cell goes from the rank that has it straight to its new one, of which
/// a list begins with those of the own cells. Answers the new cells of this rank.
MovingCells moved(const MovingCells& own, const std::vector<int>& new_ranks, ranks::Group& group);

}  // namespace fields
