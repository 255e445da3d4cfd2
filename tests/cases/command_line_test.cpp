#include <sys/stat.h>

#include <fstream>

#include "cases/CaseTest.hpp"

namespace {

using support::contains;
using support::run_program;
using support::RunResult;

const std::string prompt = "Please provide the input data file name: ";

bool is_number(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

class CommandLine : public CaseTest {
 protected:
  RunResult run_with(const std::vector<std::string>& arguments, const std::string& input = "") {
    c.write(folder);
    return run_program(folder.path(), arguments, {.input = input});
  }
  void expect_complete(const RunResult& result) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(contains(folder.read("log.txt"), "Total execution time: "));
  }
};

TEST_F(CommandLine, RunsTheDataFileWithAnEchoOnTheConsole) {
  const RunResult result = run_with({"-f", "data.json"});
  expect_complete(result);
  EXPECT_TRUE(support::starts_with(result.out, "Welcome to Quillmere !\nStill water\n   0.000"));
  const std::string last = result.out.substr(result.out.rfind('\r') + 1);
  const std::string start = "Total execution time: ";
  const std::string end = " sec. for 1 sec. of simulation.\n";
  ASSERT_TRUE(last.starts_with(start)) << last;
  ASSERT_TRUE(last.ends_with(end)) << last;
  EXPECT_TRUE(is_number(last.substr(start.size(), last.size() - start.size() - end.size())));
}

TEST_F(CommandLine, SilencesTheEchoBeforeAndAfterTheDataFile) {
  const RunResult loud = run_with({"-f", "data.json"});
  const std::string log = essence_of_log(folder.read("log.txt"));
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-nodisplay", "-f", "data.json"},
        std::vector<std::string>{"-f", "data.json", "-nodisplay"}}) {
    const RunResult result = run_with(arguments);
    expect_complete(result);
    EXPECT_EQ(result.out.find_first_not_of(" 0123456789.\r"), std::string::npos) << result.out;
    EXPECT_EQ(essence_of_log(folder.read("log.txt")), log);
  }
}

TEST_F(CommandLine, TakesADataFileThatCanBeReadOnlyOnce) {
  c.write(folder);
  const std::string pipe = folder.path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  support::RunningProgram program(folder.path(), {"-f", "pipe"}, {.time_limit = 30.0});
  std::ofstream(pipe) << folder.read("data.json");
  expect_complete(program.wait());
}

TEST_F(CommandLine, IgnoresOtherTokens) {
  const RunResult result = run_with({"other", "-f", "data.json", "", "-"});
  expect_complete(result);
  EXPECT_TRUE(contains(result.out, "Welcome to Quillmere !"));
}

TEST_F(CommandLine, WarnsOfTokensThatLookLikeOptions) {
  const RunResult result =
      run_with({"-x", "-f", "data.json", "--report=r.json", "-NODISPLAY", "--no-picture"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "Warning: \"-x\" is no option, and ignored.\n"
            "Warning: \"--report=r.json\" is no option, and ignored; did you mean --report?\n"
            "Warning: \"-NODISPLAY\" is no option, and ignored; did you mean -nodisplay?\n"
            "Warning: \"--no-picture\" is no option, and ignored.\n");
  EXPECT_TRUE(contains(result.out, "Welcome to Quillmere !"));
}

TEST_F(CommandLine, AsksForTheDataFileWhenItIsNotGiven) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, std::vector<std::string>{"data.json"}}) {
    const RunResult result = run_with(arguments, "  data.json other words\n");
    expect_complete(result);
    EXPECT_TRUE(support::starts_with(result.out, prompt + "\nWelcome to Quillmere !\n"));
  }
}

TEST_F(CommandLine, AsksForTheDataFileThatIsMissingBehindItsOption) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-f"}, std::vector<std::string>{"-f", ""}}) {
    const RunResult result = run_with(arguments, "data.json");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "Warning: \"-f\" lacks the name of the data file behind it.\n");
    EXPECT_TRUE(support::starts_with(result.out, prompt + "\nWelcome to Quillmere !\n"));
  }
}

TEST_F(CommandLine, AsksEvenWithoutEcho) {
  const RunResult result = run_with({"-nodisplay"}, "data.json");
  expect_complete(result);
  EXPECT_TRUE(support::starts_with(result.out, prompt + "\n   0.000"));
}

TEST_F(CommandLine, ReadsTheWholeWordAtThePrompt) {
  std::string word;
  for (int i = 0; i < 1000; ++i) word += "./";
  expect_complete(run_with({}, word + "data.json\n"));
}

TEST_F(CommandLine, PrintsItsUsageWhenTheInputEndsAtThePrompt) {
  for (const std::string input : {"", " \n\t\n"}) {
    const RunResult result = run_with({}, input);
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(support::starts_with(result.err, "Usage: quillmere -f DATA_FILE"));
    EXPECT_TRUE(result.err.ends_with(
        "\nError. No data file is named, neither behind -f nor on standard input.\n"))
        << result.err;
    EXPECT_TRUE(support::starts_with(result.out, prompt + "\n"));
  }
}

TEST_F(CommandLine, EndsWithoutItsDataFileAfterTheBanner) {
  const RunResult result = run_with({"-f", "nothing.json"});
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Fatal error. Impossible to open file nothing.json.\n");
  EXPECT_EQ(result.out, "Welcome to Quillmere !\n");
  EXPECT_TRUE(contains(folder.read("log.txt"), "Originally created by:\n"));
}

TEST_F(CommandLine, EndsWhenTheDataFileIsAFolder) {
  const RunResult result = run_with({"-f", "out"});
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Fatal error. Impossible to open file out.\n");
}

TEST_F(CommandLine, PrintsItsHelpAndDoesNothingElse) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"},
        std::vector<std::string>{"-f", "data.json", "--help"}}) {
    const RunResult result = run_with(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(contains(result.out, "Usage: quillmere -f DATA_FILE"));
    EXPECT_TRUE(contains(result.out, "-nodisplay"));
    EXPECT_FALSE(folder.has("log.txt"));
    EXPECT_FALSE(folder.has("out/enveloppe.txt"));
  }
}

TEST_F(CommandLine, PrintsItsVersionAndDoesNothingElse) {
  const RunResult result = run_with({"--version"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::string start = "quillmere ";
  ASSERT_TRUE(result.out.starts_with(start)) << result.out;
  ASSERT_TRUE(result.out.ends_with("\n")) << result.out;
  const std::vector<std::string> numbers =
      support::split(result.out.substr(start.size(), result.out.size() - start.size() - 1), '.');
  EXPECT_EQ(numbers.size(), 3U);
  for (const std::string& number : numbers) EXPECT_TRUE(is_number(number)) << result.out;
  EXPECT_FALSE(folder.has("log.txt"));
}

TEST_F(CommandLine, ReplacesAnEarlierLog) {
  folder.write("log.txt", std::string(100000, 'x'));
  expect_complete(run_with({"-f", "data.json"}));
  EXPECT_FALSE(contains(folder.read("log.txt"), "x\n="));
  EXPECT_TRUE(support::starts_with(folder.read("log.txt"), std::string(49, '=') + "\nWelcome"));
}

TEST_F(CommandLine, GoesOnWithoutALogThatCannotBeCreated) {
  folder.write("log.txt/inside", "");
  const RunResult result = run_with({"-f", "data.json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Warning: The file log.txt couldn't be created.\n");
  EXPECT_TRUE(folder.has("out/enveloppe.txt"));
}

}  // namespace
