// The program with a graphics card: without one it runs as any other, and says what it lacks.
#include <algorithm>

#include "cases/CaseTest.hpp"

namespace {

using support::run_program;
using support::RunResult;

class WithCard : public CaseTest {
 protected:
  /// Runs the case by the program with a card.
  RunResult run_with(std::vector<std::string> options) {
    c.write(folder);
    options.insert(options.begin(), {"-f", "data.json", "-nodisplay"});
    return run_program(folder.path(), options, {.program = QUILLMERE_WITH_CARD});
  }
};

}  // namespace

TEST_F(WithCard, RunsWithoutOneAsLongAsNobodyAsksForIt) {
  c = support::full_case();
  c.set_times(0.0, 0.3);
  run();
  const std::string envelope = folder.read("out/enveloppe.txt");
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{}, std::vector<std::string>{"--device", "emulated"}}) {
    EXPECT_EQ(run_with(options).status, 0);
    EXPECT_EQ(folder.read("out/enveloppe.txt"), envelope);
  }
}

TEST_F(WithCard, GivesTheBytesOfTheProcessorOrSaysThatThereIsNoCard) {
  c = support::full_case();
  c.set_times(0.0, 0.3);
  run();
  const std::string envelope = folder.read("out/enveloppe.txt");
  const RunResult result = run_with({"--device", "card"});
  if (result.status == 0) {
    EXPECT_EQ(folder.read("out/enveloppe.txt"), envelope);
    EXPECT_NE(folder.read("log.txt").find("  Graphics card: "), std::string::npos);
    return;
  }
  EXPECT_EQ(result.status, 255);
  const std::string error = "Error. A graphics card is asked for, but none can be used: ";
  EXPECT_TRUE(result.err.starts_with(error)) << result.err;
  EXPECT_GT(result.err.size(), error.size() + 3);
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
}
