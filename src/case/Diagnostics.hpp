// Where those who read a case tell what is wrong with it.
#pragma once

#include <string>

namespace cases {

class Diagnostics {
 public:
  virtual ~Diagnostics() = default;
  /// Nothing can be computed with this. If it returns, reading goes on to find more.
  virtual void error(const std::string& message) = 0;
  /// The run goes on, and hardly does what was meant.
  virtual void warn(const std::string& message) = 0;
};

}  // namespace cases
