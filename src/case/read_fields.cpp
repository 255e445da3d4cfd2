#include "case/read_fields.hpp"

#include "utils/stop.hpp"

namespace cases {

void end_at_unknown_term(Number, int id) {
  utils::fatal("", 1, "Error: source term ID " + std::to_string(id) + " not found\n");
}

}  // namespace cases
