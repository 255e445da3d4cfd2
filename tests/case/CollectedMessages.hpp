// Keeps what readers of a case tell.
#pragma once

#include <string>
#include <vector>

#include "case/Diagnostics.hpp"

class CollectedMessages : public cases::Diagnostics {
 public:
  void error(const std::string& message) override { errors.push_back(message); }
  void warn(const std::string& message) override { warnings.push_back(message); }

  std::vector<std::string> errors, warnings;
};
