// The tables of a model whose objects a test has built by hand, in its present state.
#pragma once

#include "fields/TablesFlow.hpp"
#include "support/Told.hpp"
#include "support/case_of.hpp"

namespace support {

struct TablesOfModel {
  TablesOfModel(const PhysicalModel& model, int threads, int cells_per_patch = 0)
      : contents(case_of(model)), flow(contents, told, threads, cells_per_patch) {
    flow.engine().set_state(state_of(model, contents));
  }

  Told told;
  cases::Case contents;
  fields::TablesFlow flow;
};

}  // namespace support
