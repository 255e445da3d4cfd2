#include "utils/InputParser.hpp"

#include <algorithm>

#include "utils/edit_distance.hpp"

namespace utils {

namespace {

/// Empty if the word resembles none.
std::string nearest_option(const std::string& word, const std::vector<CmdOption>& known) {
  std::string nearest;
  // Of a word of two characters only the letter counts, capital or small.
  std::size_t smallest = std::min(least_strange_distance(word), word.size() - 1);
  for (const CmdOption& option : known) {
    const std::size_t distance = edit_distance(word, option.name);
    if (distance >= smallest) continue;
    smallest = distance;
    nearest = option.name;
  }
  return nearest;
}

}  // namespace

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

std::vector<std::string> InputParser::strange_options(const std::vector<CmdOption>& known) const {
  std::vector<std::string> strange;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    const std::string& token = tokens_[i];
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const CmdOption& option) { return option.name == token; });
    if (found != known.end()) {
      if (found->has_value) ++i;
    } else if (token.size() > 1 && token.front() == '-') {
      const std::string nearest = nearest_option(token.substr(0, token.find('=')), known);
      strange.push_back("\"" + token + "\" is no option, and ignored" +
                        (nearest.empty() ? "." : "; did you mean " + nearest + "?"));
    }
  }
  return strange;
}

}  // namespace utils
