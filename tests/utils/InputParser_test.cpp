#include "utils/InputParser.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

utils::InputParser parser_of(std::vector<std::string> words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  int argc = static_cast<int>(argv.size());
  return {argc, argv.data()};
}

TEST(InputParser, AnswersTheTokenAfterAnOption) {
  EXPECT_EQ(parser_of({"program", "-f", "data.json"}).getCmdOption("-f"), "data.json");
  EXPECT_EQ(parser_of({"program", "-nodisplay", "-f", "a b"}).getCmdOption("-f"), "a b");
}

TEST(InputParser, AnswersAfterTheFirstOfTwoEqualOptions) {
  EXPECT_EQ(parser_of({"program", "-f", "one", "-f", "two"}).getCmdOption("-f"), "one");
}

TEST(InputParser, TakesEvenAnOptionAsTheValueOfTheOptionBefore) {
  EXPECT_EQ(parser_of({"program", "-f", "-nodisplay"}).getCmdOption("-f"), "-nodisplay");
}

TEST(InputParser, AnswersTheEmptyTextForAnAbsentOption) {
  EXPECT_EQ(parser_of({"program", "data.json"}).getCmdOption("-f"), "");
}

TEST(InputParser, TakesAnOptionInLastPlaceForAbsent) {
  const utils::InputParser parser = parser_of({"program", "-nodisplay", "-f"});
  EXPECT_EQ(parser.getCmdOption("-f"), "");
  EXPECT_TRUE(parser.cmdOptionExists("-f"));
}

TEST(InputParser, DoesNotTakeTheProgramNameForAToken) {
  const utils::InputParser parser = parser_of({"-nodisplay", "-f"});
  EXPECT_FALSE(parser.cmdOptionExists("-nodisplay"));
  EXPECT_EQ(parser_of({"-f", "data.json"}).getCmdOption("-f"), "");
}

TEST(InputParser, ComparesWholeTokens) {
  const utils::InputParser parser = parser_of({"program", "-nodisplayed", "-fdata.json"});
  EXPECT_FALSE(parser.cmdOptionExists("-nodisplay"));
  EXPECT_FALSE(parser.cmdOptionExists("-f"));
  EXPECT_EQ(parser.getCmdOption("-f"), "");
}

TEST(InputParser, HasNoTokensWithoutArguments) {
  char* none[] = {nullptr};
  int argc = 0;
  const utils::InputParser parser(argc, none);
  EXPECT_FALSE(parser.cmdOptionExists(""));
  EXPECT_EQ(parser.getCmdOption("-f"), "");
}

TEST(InputParser, AnswersReferencesThatStay) {
  const utils::InputParser parser = parser_of({"program", "-f", "data.json"});
  EXPECT_EQ(&parser.getCmdOption("-f"), &parser.getCmdOption("-f"));
  EXPECT_EQ(&parser.getCmdOption("-x"), &parser.getCmdOption("-y"));
}

TEST(InputParser, NamesTokensThatOnlyLookLikeOptions) {
  const std::vector<utils::CmdOption> known = {{"-f", true}, {"--help", false}};
  const auto strange = [&](std::vector<std::string> tokens) {
    tokens.insert(tokens.begin(), "program");
    return parser_of(tokens).strange_options(known);
  };
  EXPECT_TRUE(strange({"-f", "--hepl", "word", "-", "--help", ""}).empty());
  EXPECT_EQ(strange({"--help", "--hepl", "--HELP=x", "---------", "-h", "-F"}),
            (std::vector<std::string>{
                "\"--hepl\" is no option, and ignored; did you mean --help?",
                "\"--HELP=x\" is no option, and ignored; did you mean --help?",
                "\"---------\" is no option, and ignored.", "\"-h\" is no option, and ignored.",
                "\"-F\" is no option, and ignored; did you mean -f?"}));
}

}  // namespace
