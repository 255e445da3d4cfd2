#include "ranks/in_step.hpp"

#include <string>

namespace ranks {

utils::FatalError told_by(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const utils::FatalError& fatal) {
    return fatal;
  } catch (const std::exception& other) {
    return utils::FatalError(other.what() + std::string("\n"));
  }
}

}  // namespace ranks
