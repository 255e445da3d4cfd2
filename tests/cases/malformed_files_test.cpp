// Every value of every kind of input file, replaced by what it cannot be.
#include <algorithm>
#include <cctype>
#include <ostream>

#include "cases/CaseTest.hpp"

namespace {

using support::RunResult;

/// A file of values in the form in which the case writes it: its name, and the positions (counted
/// in values) of counts, which say how many records follow.
struct Input {
  std::string name;
  std::vector<std::size_t> counts;
};

void PrintTo(const Input& input, std::ostream* out) { *out << input.name; }

/// A text cut into values and the white space before each of them.
struct Token {
  std::string space, word;
};

std::vector<Token> tokens_of(const std::string& text) {
  std::vector<Token> tokens;
  bool in_word = false;
  for (const char character : text) {
    const bool is_space = std::isspace(static_cast<unsigned char>(character)) != 0;
    if (is_space && (in_word || tokens.empty())) tokens.emplace_back();
    if (!is_space && tokens.empty()) tokens.emplace_back();
    in_word = !is_space;
    (is_space ? tokens.back().space : tokens.back().word) += character;
  }
  if (!tokens.empty() && tokens.back().word.empty()) tokens.pop_back();
  return tokens;
}

std::string text_of(const std::vector<Token>& tokens) {
  std::string text;
  for (const Token& token : tokens) text += token.space + token.word;
  return text + "\n";
}

bool is_numeral(const std::string& word) {
  return word.find_first_not_of("+-.0123456789e") == std::string::npos;
}

class MalformedFile : public CaseTest, public testing::WithParamInterface<Input> {
 protected:
  MalformedFile() {
    c = support::full_case(1, 1);
    c.write(folder);
    tokens = tokens_of(folder.read(GetParam().name));
  }
  RunResult run_with(const std::vector<Token>& changed) {
    folder.write(GetParam().name, text_of(changed));
    return support::run_case(folder, {.address_space = std::size_t{1} << 30});
  }
  RunResult run_with(std::size_t position, const std::string& word) {
    std::vector<Token> changed = tokens;
    changed.at(position).word = word;
    return run_with(changed);
  }
  /// One line that names the file and the place, and says what was found and expected.
  void expect_refusal(const RunResult& result, const std::string& found, std::size_t position) {
    const std::string where = "value " + std::to_string(position);
    EXPECT_EQ(result.status, 255) << where;
    EXPECT_EQ(support::lines(result.err).size(), 1U) << where << "\n" << result.err;
    EXPECT_TRUE(support::starts_with(result.err, "Error in file " + GetParam().name + ", line "))
        << where << "\n"
        << result.err;
    EXPECT_TRUE(support::contains(result.err, ": found " + found + ", expected ")) << where << "\n"
                                                                                   << result.err;
    EXPECT_FALSE(folder.has("out/enveloppe.txt"));
  }

  std::vector<Token> tokens;
};

TEST_P(MalformedFile, IsWellFormedToBeginWith) {
  ASSERT_FALSE(tokens.empty());
  const RunResult result = run_with(tokens);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
}

TEST_P(MalformedFile, IsRefusedForWordsAndHalfNumbers) {
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!is_numeral(tokens[i].word)) continue;
    const std::string word = std::vector<std::string>{"abc", "1,5", "0x1"}[i % 3];
    expect_refusal(run_with(i, word), "\"" + word + "\"", i);
  }
}

TEST_P(MalformedFile, IsRefusedForNumbersThatAreNotFinite) {
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!is_numeral(tokens[i].word)) continue;
    const std::string word = std::vector<std::string>{"nan", "-inf", "1e999"}[i % 3];
    expect_refusal(run_with(i, word), "\"" + word + "\"", i);
  }
}

TEST_P(MalformedFile, IsRefusedWhereverItEndsTooEarly) {
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const std::vector<Token> start(tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(i));
    const RunResult result = run_with(start);
    // Either the end comes where a value should be, or a count is seen to promise too much.
    const bool at_the_end = support::contains(result.err, "found the end of the file, expected ");
    const bool at_a_count = support::contains(result.err, "expected a count from 0 to ");
    EXPECT_TRUE(at_the_end || at_a_count) << i << " values\n" << result.err;
    EXPECT_TRUE(support::starts_with(result.err, "Error in file " + GetParam().name + ", line "));
    EXPECT_EQ(result.status, 255);
  }
}

TEST_P(MalformedFile, ThatIsMissingEndsTheRun) {
  std::filesystem::remove(folder.file(GetParam().name));
  const RunResult result = support::run_case(folder);
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Fatal error. Impossible to open file " + GetParam().name + ".\n");
}

class CountInFile : public MalformedFile {};

TEST_P(CountInFile, IsRefusedWhenImpossibleBeforeAnythingIsAllocated) {
  for (const std::size_t position : GetParam().counts) {
    for (const std::string count : {"-1", "2000000000", "2147483647", "-2147483648"}) {
      const RunResult result = run_with(position, count);
      expect_refusal(result, "\"" + count + "\"", position);
      EXPECT_TRUE(support::contains(result.err, "expected a count from 0 to ")) << result.err;
    }
  }
}

TEST_P(CountInFile, IsRefusedWhenItIsNoInteger) {
  for (const std::size_t position : GetParam().counts) {
    for (const std::string count : {"1.0", "1e0", "2147483648", "one"}) {
      const RunResult result = run_with(position, count);
      expect_refusal(result, "\"" + count + "\"", position);
      EXPECT_TRUE(support::contains(result.err, "expected an integer")) << result.err;
    }
  }
}

std::string name_of(const testing::TestParamInfo<Input>& input) {
  std::string name = input.param.name.substr(0, input.param.name.find('.'));
  name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
  return name;
}

const std::vector<Input> inputs_with_counts = {
    {"nodes.txt", {0}},       {"cells.txt", {0, 1, 5}}, {"edges.txt", {0}},
    {"rain.txt", {0, 2}},     {"soils.txt", {0}},       {"inflow.txt", {0}},
    {"level.txt", {0}},       {"gauges_in.txt", {0}},   {"sections_in.txt", {0, 3, 5}},
    {"snapshots_in.txt", {0}}};

const std::vector<Input> inputs_without_counts = {
    {"bed.txt", {}},        {"friction.txt", {}},      {"initial.txt", {}},
    {"hyetocells.txt", {}}, {"infiltracells.txt", {}}, {"infiltrated.txt", {}}};

INSTANTIATE_TEST_SUITE_P(WithCounts, MalformedFile, testing::ValuesIn(inputs_with_counts), name_of);
INSTANTIATE_TEST_SUITE_P(WithoutCounts, MalformedFile, testing::ValuesIn(inputs_without_counts),
                         name_of);
INSTANTIATE_TEST_SUITE_P(OfEveryKind, CountInFile, testing::ValuesIn(inputs_with_counts), name_of);

}  // namespace
