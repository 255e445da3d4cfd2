#include <algorithm>
#include <filesystem>
#include <random>

#include "tools/mesh/CheckTest.hpp"

namespace {

class CheckDamage : public CheckTest {
 protected:
  /// A text cut off, or with a byte replaced, removed or put in.
  std::string damaged(std::string text) {
    static const std::string bytes = "0123456789-+.eE x\n\t\0\xff\"{}[],:";
    const std::size_t place = random_() % text.size();
    const char byte = bytes[random_() % bytes.size()];
    switch (random_() % 4) {
      case 0:
        return text.substr(0, place);
      case 1:
        text[place] = byte;
        return text;
      case 2:
        return text.erase(place, 1);
      default:
        return text.insert(place, 1, byte);
    }
  }

 private:
  std::mt19937 random_{20240229};
};

TEST_F(CheckDamage, EndsWithAVerdictWhichIsThatOfTheSimulator) {
  constexpr int damages_per_file = 3;
  c = support::full_case(2, 2);
  c.set_times(1.0, 1.0);  // the simulator reads everything, and takes no step
  c.write(folder);
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    if (entry.is_regular_file()) names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  ASSERT_EQ(names.size(), 17U);

  int refused = 0;
  for (const std::string& name : names) {
    const std::string text = folder.read(name);
    for (int i = 0; i < damages_per_file; ++i) {
      const std::string damage = damaged(text);
      folder.write(name, damage);
      const support::RunResult result = mesh_tool({"check", ".", "--json", "--quick"});
      ASSERT_EQ(result.signal, 0) << name << ":\n" << damage;
      ASSERT_TRUE(result.status == 0 || result.status == 1) << name << ":\n" << damage;
      EXPECT_TRUE(json::accept(result.out)) << name << ":\n" << damage;
      EXPECT_EQ(result.status == 0, support::run_case(folder).status == 0) << name << ":\n"
                                                                           << damage << "\n"
                                                                           << result.out;
      refused += result.status;
    }
    folder.write(name, text);
  }
  EXPECT_GT(refused, 6);
}

TEST_F(CheckDamage, SaysOfAMalformedFileWhatTheSimulatorSays) {
  c = support::full_case(2, 2);
  c.set_times(1.0, 1.0);
  c.write(folder);
  const std::string beginning = "Error in file ";
  int malformed = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    if (!entry.is_regular_file() || entry.path().extension() != ".txt") continue;
    const std::string name = entry.path().filename();
    const std::string text = folder.read(name);
    const std::string cut = text.substr(0, text.find_last_of(" \n", 4 * text.size() / 5));
    for (const std::string& damage : {cut, cut + " x" + text.substr(cut.size())}) {
      folder.write(name, damage);
      const std::vector<std::string> lines = support::lines(support::run_case(folder).err);
      const auto error = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return support::starts_with(line, beginning);
      });
      ASSERT_NE(error, lines.end()) << name << ":\n" << damage;
      const std::string said =
          error->substr(beginning.size(), error->rfind('.') - beginning.size());
      const json found = json::parse(mesh_tool({"check", ".", "--json", "--quick"}).out);
      EXPECT_TRUE(support::contains(found["errors"].at(0)["text"], said)) << found["errors"];
      ++malformed;
    }
    folder.write(name, text);
  }
  EXPECT_EQ(malformed, 32);
}

}  // namespace
