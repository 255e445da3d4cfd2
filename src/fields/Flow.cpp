#include "fields/Flow.hpp"

#include "fields/PartLooks.hpp"

namespace fields {

std::unique_ptr<Looks> Flow::looks(const cases::Case& contents) const {
  return std::make_unique<WholeLooks>(*this, contents);
}

}  // namespace fields
