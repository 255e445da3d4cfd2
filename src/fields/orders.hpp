// What rank 0 tells the ranks that serve it: flows to take part in, and in these one order after
// the other.
#pragma once

#include <cstddef>

#include "fields/Field.hpp"
#include "fields/Flow.hpp"
#include "ranks/values.hpp"

namespace fields {

/// What rank 0 calls all ranks for.
struct Call {
  enum class Kind {
    read,            ///< they read a case together
    ground,          ///< they tell of what they have read
    mesh_rows,       ///< one of them sends what results list of the mesh that it has read
    flow_of_shares,  ///< the first of them make a flow of that
    flow,            ///< the first of them make a flow, of what rank 0 deals out
    end
  };
  Kind kind;
  int number = 0;  ///< of the members of a flow, of a rank, or of the end
};

inline void call(ranks::Group& group, Call what) { ranks::broadcast_plain(group, what); }

enum class Task {
  stable_step,
  advance,
  keep_maxima,
  note_maxima,
  watch,
  read,
  state,
  weigh_ranks,
  deal_anew,
  follow_deal,
  recut,
  look,
  gather_rows,
  pass_rows,
  write_shared,
  load_rows,
  ground,
  end
};

/// What the ranks of a flow do next, with what it takes.
struct Order {
  Task task;
  Field field = Field::depth;
  cases::Number number = 0;  ///< a cell, a table, or how many
  int rank = 0;
  std::size_t bytes = 0;
  double value = 0.0;
  StepTimes times = {};
};

inline void tell(ranks::Group& group, Order order) { ranks::broadcast_plain(group, order); }

}  // namespace fields
