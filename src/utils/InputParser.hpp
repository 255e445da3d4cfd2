// Command-line tokens.
#pragma once

#include <string>
#include <vector>

namespace utils {

class InputParser {
 public:
  /// Keeps the tokens after the program name, in order.
  InputParser(int& argc, char** argv);

  /// The token after the first one equal to `option`; empty if there is none.
  const std::string& getCmdOption(const std::string& option) const;
  /// Whether any token equals `option`.
  bool cmdOptionExists(const std::string& option) const;

 private:
  std::vector<std::string> tokens_;
};

}  // namespace utils
