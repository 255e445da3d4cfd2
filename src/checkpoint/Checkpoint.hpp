// What a checkpoint holds besides the rows of its flow: with these, all that a run needs to go on
// from between two steps as if it had never stopped.
#pragma once

#include <vector>

#include "checkpoint/inputs.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "output/OutputPositions.hpp"
#include "utils/bytes.hpp"

namespace checkpoint {

struct Checkpoint {
  std::vector<Input> inputs;
  std::vector<RainInput> rain;
  fields::Clock clock;
  OutputPositions outputs;
  utils::Bytes looks;  ///< of WaterLooks
  bool has_warned_of_much_below_zero = false;
  utils::Bytes report;     ///< of RunReport; empty without one
  fields::SavedFlow flow;  ///< with notes in a run with a report

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.inputs, self.rain, self.clock, self.outputs, self.looks,
          self.has_warned_of_much_below_zero, self.report, self.flow);
  }
};

}  // namespace checkpoint
