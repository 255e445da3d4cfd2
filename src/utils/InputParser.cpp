#include "utils/InputParser.hpp"

#include <algorithm>

namespace utils {

InputParser::InputParser(int& argc, char** argv) {
  if (argc > 1) tokens_.assign(argv + 1, argv + argc);
}

const std::string& InputParser::getCmdOption(const std::string& option) const {
  static const std::string none;
  const auto found = std::find(tokens_.begin(), tokens_.end(), option);
  return found != tokens_.end() && found + 1 != tokens_.end() ? *(found + 1) : none;
}

bool InputParser::cmdOptionExists(const std::string& option) const {
  return std::find(tokens_.begin(), tokens_.end(), option) != tokens_.end();
}

}  // namespace utils
