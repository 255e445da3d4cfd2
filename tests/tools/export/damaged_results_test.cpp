// Two hundred damaged versions of every file that is read: each gives an error or a result, and
// none ends the process.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <sstream>

#include "export/Mesh.hpp"
#include "export/commands.hpp"
#include "support/Tool.hpp"
#include "tools/export/ExportTest.hpp"

namespace {

struct Damage {
  std::string file;
  std::string command;
};

void PrintTo(const Damage& damage, std::ostream* out) { *out << damage.file; }

/// A damaged version of a text; the kind of damage goes round.
std::string damaged(std::string text, int kind, std::mt19937& random) {
  const auto below = [&](std::size_t n) { return random() % std::max<std::size_t>(n, 1); };
  const std::size_t at = below(text.size());
  static const char* const words[] = {"-1",  "nan", "inf",   "1e400",      "4000000000", "1e308",
                                      "abc", "",    "-1e-9", "2147483647", "\"",         "{"};
  switch (kind % 6) {
    case 0:
      return text.substr(0, at);
    case 1:
      for (int i = 0; i < 5; ++i) text[below(text.size())] = static_cast<char>(random());
      return text;
    case 2: {  // a word becomes another one
      const std::size_t begin = text.find_first_not_of(" \t\n", at);
      if (begin == std::string::npos) return "";
      const std::size_t end = std::min(text.find_first_of(" \t\n,", begin), text.size());
      return text.replace(begin, end - begin, words[below(std::size(words))]);
    }
    case 3: {  // a line is lost
      const std::size_t begin = text.rfind('\n', at) + 1;
      return text.erase(begin, text.find('\n', at) - begin + 1);
    }
    case 4: {  // a line stands twice
      const std::size_t begin = text.rfind('\n', at) + 1;
      const std::string line = text.substr(begin, text.find('\n', at) - begin + 1);
      return text.insert(begin, line);
    }
    default: {  // junk
      std::string junk(below(300), '\0');
      for (char& c : junk) c = static_cast<char>(random());
      return text.insert(at, junk);
    }
  }
}

class DamagedResults : public ExportTest, public testing::WithParamInterface<Damage> {
 protected:
  /// Runs a command in this process and returns its status.
  int run_here(const std::string& command) {
    std::istringstream stream(command);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word == "." ? folder.path() : word);
    std::vector<char*> pointers = {words[0].data()};
    for (std::size_t i = 1; i < words.size(); ++i) pointers.push_back(words[i].data());
    tools::Tool tool("quillmere-export", "", "");
    exports::add_netcdf_command(tool.app());
    exports::add_csv_command(tool.app());
    return tool.run(static_cast<int>(pointers.size()), pointers.data());
  }
};

}  // namespace

TEST_P(DamagedResults, AreRefusedOrExportedButNeverEndTheProcess) {
  simulate(GetParam().file == "layer.txt" ? sand_case() : flood_case());
  const std::string& file = GetParam().file;
  const std::string whole = folder.read(file);
  ASSERT_NE(whole, "");
  std::mt19937 random(20);
  int refused = 0;
  for (int i = 0; i < 200; ++i) {
    folder.write(file, damaged(whole, i, random));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = run_here("quillmere-export " + GetParam().command);
    testing::internal::GetCapturedStdout();
    const std::string error = testing::internal::GetCapturedStderr();
    ASSERT_TRUE(status == 0 || status == 1) << "damage " << i << ": " << error;
    if (status == 0) continue;
    ++refused;
    EXPECT_TRUE(support::starts_with(error, "quillmere-export: ") ||
                support::starts_with(error, "Warning: "))
        << error;
  }
  EXPECT_GT(refused, 20);
}

TEST_F(ExportTest, DamagedEdgesAreRefusedOrReadButNeverEndTheProcess) {
  const tools::Tool tool("quillmere-export", "", "");  // from here on, an error is thrown
  flood_case().write(folder);
  const exports::Mesh mesh = exports::read_mesh(folder.file("nodes.txt"), folder.file("cells.txt"));
  const std::string whole = folder.read("edges.txt");
  std::mt19937 random(21);
  int refused = 0;
  for (int i = 0; i < 200; ++i) {
    const std::string name = folder.write("edges.txt", damaged(whole, i, random));
    try {
      exports::read_edges(name, mesh);
    } catch (const tools::Error& error) {
      ++refused;
      EXPECT_TRUE(support::starts_with(error.what(), "Error in file " + name)) << error.what();
    }
  }
  EXPECT_GT(refused, 20);
}

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedResults,
    testing::Values(Damage{"data.json", "netcdf ."}, Damage{"nodes.txt", "netcdf ."},
                    Damage{"cells.txt", "netcdf ."}, Damage{"bed.txt", "netcdf ."},
                    Damage{"layer.txt", "netcdf ."}, Damage{"snapshots_in.txt", "netcdf ."},
                    Damage{"out/pic_0_50.txt", "netcdf ."}, Damage{"out/enveloppe.txt", "netcdf ."},
                    Damage{"gauges_in.txt", "csv ."}, Damage{"sections_in.txt", "csv ."},
                    Damage{"out/gauges.txt", "csv ."}, Damage{"sections.txt", "csv ."}));
