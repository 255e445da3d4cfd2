// What a run does with what is wrong in its case.
#pragma once

#include "case/Diagnostics.hpp"
#include "utils/stop.hpp"

namespace cases {

class EndAtFirstError : public Diagnostics {
 public:
  void error(const std::string& message) override { utils::fatal(message); }
  void warn(const std::string& message) override { utils::warn(message); }
};

/// Where others give the same warnings.
class WithoutWarnings : public EndAtFirstError {
 public:
  void warn(const std::string&) override {}
};

}  // namespace cases
