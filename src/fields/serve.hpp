// The ranks that are not rank 0: they do what it asks of them, step by step, and know nothing of
// outputs.
#pragma once

#include <functional>

#include "ranks/Group.hpp"

namespace fields {

/// On a rank that is not rank 0: reads cases with the others and takes part in the flows that
/// rank 0 makes, until that ends the service; answers the number that it ends with. What fails on
/// this rank alone comes out, and the others wait for it.
/// `is_interrupted` is asked in every step: whether this process was asked to end.
int serve(ranks::Group& group, const std::function<bool()>& is_interrupted);
/// On rank 0, without a flow.
void end_service(ranks::Group& group, int number);

}  // namespace fields
