// Command-line tokens.
#pragma once

#include <string>
#include <vector>

namespace utils {

/// A word that a program knows; it may take the token behind it as its value.
struct CmdOption {
  std::string name;
  bool has_value;
};

class InputParser {
 public:
  /// Keeps the tokens after the program name, in order.
  InputParser(int& argc, char** argv);

  /// The token after the first one equal to `option`; empty if there is none.
  const std::string& getCmdOption(const std::string& option) const;
  /// Whether any token equals `option`.
  bool cmdOptionExists(const std::string& option) const;
  /// What is strange about tokens that look like options, each for a warning: those that are none
  /// of `known`, nor the value of one, with the one that they resemble.
  std::vector<std::string> strange_options(const std::vector<CmdOption>& known) const;

 private:
  std::vector<std::string> tokens_;
};

}  // namespace utils
