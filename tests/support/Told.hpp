// Keeps what a reader or a run tells.
#pragma once

#include <string>
#include <vector>

#include "case/Diagnostics.hpp"

namespace support {

class Told : public cases::Diagnostics {
 public:
  void error(const std::string& message) override { errors.push_back(message); }
  void warn(const std::string& message) override { warnings.push_back(message); }

  std::vector<std::string> errors, warnings;
};

}  // namespace support
