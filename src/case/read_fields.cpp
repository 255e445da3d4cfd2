#include "case/read_fields.hpp"

#include <iostream>

#include "utils/stop.hpp"

namespace cases {

void end_at_unknown_term(Number, int id) {
  std::cout << "Error: source term ID " << id << " not found" << std::endl;
  utils::stop(1);
}

}  // namespace cases
