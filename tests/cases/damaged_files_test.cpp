// Every input file as other systems and accidents leave it: what is harmless changes no result, and
// the rest ends the run with a message that names the file.
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <set>

#include "case/DataFileReader.hpp"
#include "cases/CaseTest.hpp"

namespace {

using support::contains;
using support::RunResult;
using support::starts_with;

const std::vector<std::string> text_files = {
    "nodes.txt", "cells.txt",         "edges.txt",       "initial.txt",
    "bed.txt",   "friction.txt",      "rain.txt",        "hyetocells.txt",
    "soils.txt", "infiltracells.txt", "infiltrated.txt", "inflow.txt",
    "level.txt", "gauges_in.txt",     "sections_in.txt", "snapshots_in.txt"};

const std::string utf8_mark = "\xEF\xBB\xBF";

std::string with_line_ends_of_windows(const std::string& text) {
  std::string changed;
  for (const char character : text) {
    if (character == '\n') changed += '\r';
    changed += character;
  }
  return changed;
}

/// UTF-16, low bytes first, of an ASCII text.
std::string in_utf16(const std::string& text) {
  std::string changed = "\xFF\xFE";
  for (const char character : text) {
    changed += character;
    changed += '\0';
  }
  return changed;
}

/// The first number with a comma in it: that of a fraction, or else one put behind it.
std::string with_decimal_comma(std::string text) {
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    const auto is_digit = [&](std::size_t at) { return text[at] >= '0' && text[at] <= '9'; };
    if (text[i] == '.' && is_digit(i - 1) && is_digit(i + 1)) {
      text[i] = ',';
      return text;
    }
  }
  return text.insert(text.find_first_of(" \n"), ",0");
}

class DamagedFile : public CaseTest {
 protected:
  DamagedFile() {
    c = support::full_case(2, 1);
    c.write(folder);
    for (const std::string& name : text_files) texts[name] = folder.read(name);
    texts["data.json"] = folder.read("data.json");
  }
  RunResult run_with(const std::string& name, const std::string& text) {
    folder.write(name, text);
    return support::run_case(folder);
  }
  /// Names and texts of the result files, and takes the files away.
  std::map<std::string, std::string> take_results() {
    std::map<std::string, std::string> results = {{"sections.txt", folder.read("sections.txt")}};
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      const std::string name = "out/" + entry.path().filename().string();
      results[name] = folder.read(name);
    }
    std::filesystem::remove_all(folder.file("out"));
    std::filesystem::create_directory(folder.file("out"));
    return results;
  }
  /// The same results when each file is changed, and when all of them are.
  void expect_harmless(const std::function<std::string(const std::string&)>& change) {
    EXPECT_EQ(support::run_case(folder).err, "");
    const auto expected = take_results();
    ASSERT_EQ(expected.size(), 6U);
    const auto expect_same = [&](const std::string& name, const RunResult& result) {
      EXPECT_EQ(result.status, 0) << name;
      EXPECT_EQ(result.err, "") << name;
      EXPECT_EQ(take_results(), expected) << name;
    };
    for (const auto& [name, text] : texts) {
      ASSERT_NE(change(text), text);
      expect_same(name, run_with(name, change(text)));
      folder.write(name, text);
    }
    for (const auto& [name, text] : texts) folder.write(name, change(text));
    expect_same("all files", support::run_case(folder));
  }
  /// One line on standard error that begins as given; no result that a reader could take for good.
  void expect_refusal(const RunResult& result, const std::string& start) {
    EXPECT_EQ(result.status, 255) << start;
    EXPECT_EQ(support::lines(result.err).size(), 1U) << result.err;
    EXPECT_TRUE(starts_with(result.err, start)) << start << "\n" << result.err;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      EXPECT_EQ(entry.path().filename(), "gauges.txt");
    }
    EXPECT_LE(support::lines(folder.read("out/gauges.txt")).size(), 1U);
  }

  std::map<std::string, std::string> texts;
};

TEST_F(DamagedFile, MayHaveTheLineEndsOfWindows) { expect_harmless(with_line_ends_of_windows); }

TEST_F(DamagedFile, MayLackItsLastLineEnd) {
  expect_harmless([](const std::string& text) { return text.substr(0, text.size() - 1); });
}

TEST_F(DamagedFile, MayBeginWithAByteOrderMark) {
  expect_harmless([](const std::string& text) { return utf8_mark + text; });
}

TEST_F(DamagedFile, WithAMarkElsewhereIsRefused) {
  expect_refusal(run_with("bed.txt", "0.05\n" + utf8_mark + "0.05\n0.05\n0.05\n"),
                 "Error in file bed.txt, line 2, cell 1 (of 0 to 3), bed level: found \"???0.05\"");
}

TEST_F(DamagedFile, InUtf16IsRefusedByThatName) {
  for (const std::string& name : text_files) {
    expect_refusal(
        run_with(name, in_utf16(texts[name])),
        "Error in file " + name + ": it is UTF-16 text, expected plain text (UTF-8 or ASCII).\n");
    folder.write(name, texts[name]);
  }
  expect_refusal(run_with("data.json", in_utf16(texts["data.json"])),
                 "Error in file data.json: it is UTF-16 text, expected plain text");
}

TEST_F(DamagedFile, InUtf16WithoutAMarkIsRefusedByThatName) {
  for (const std::string name : {"nodes.txt", "data.json"}) {
    expect_refusal(run_with(name, in_utf16(texts[name]).substr(2)),
                   "Error in file " + name + ": it is UTF-16 text, expected plain text");
    folder.write(name, texts[name]);
  }
}

TEST_F(DamagedFile, WithADecimalCommaIsRefused) {
  for (const std::string& name : text_files) {
    const RunResult result = run_with(name, with_decimal_comma(texts[name]));
    expect_refusal(result, "Error in file " + name + ", line ");
    EXPECT_TRUE(contains(result.err, ",")) << result.err;
    folder.write(name, texts[name]);
  }
  c.data["tend"] = 2.5;
  expect_refusal(run_with("data.json", with_decimal_comma(texts["data.json"])),
                 "[json.exception.parse_error.101] parse error at line ");
}

TEST_F(DamagedFile, WhoseEndIsZerosIsRefused) {
  for (const auto& [name, text] : texts) {
    const std::string half = text.substr(0, text.size() / 2);
    expect_refusal(run_with(name, half + std::string(text.size() - half.size(), '\0')),
                   name == "data.json" ? "[json.exception.parse_error" : "Error in file " + name);
    folder.write(name, text);
  }
}

TEST_F(DamagedFile, ThatCannotBeOpenedIsNamed) {
  for (const auto& [name, text] : texts) {
    const std::string message = "Fatal error. Impossible to open file " + name + ".\n";
    const std::string path = folder.file(name);
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    expect_refusal(support::run_case(folder), message);
    std::filesystem::remove(path);
    std::filesystem::create_symlink(path, path);
    expect_refusal(support::run_case(folder), message);
    std::filesystem::remove(path);
    folder.write(name, text);
    if (geteuid() == 0) continue;  // root may read everything
    chmod(path.c_str(), 0);
    expect_refusal(support::run_case(folder), message);
    chmod(path.c_str(), 0600);
  }
}

TEST_F(DamagedFile, ThatCannotBeReadToItsEndIsNamed) {
  const std::string unreadable = "/proc/self/mem";  // opens, and answers every read with an error
  for (const std::string& name : text_files) {
    std::filesystem::remove(folder.file(name));
    std::filesystem::create_symlink(unreadable, folder.file(name));
    expect_refusal(support::run_case(folder),
                   "Fatal error. Impossible to read file " + name + " to its end.\n");
    std::filesystem::remove(folder.file(name));
    folder.write(name, texts[name]);
  }
}

TEST_F(DamagedFile, OfDataIsRefusedWhereverItEndsTooEarly) {
  const std::string text = texts["data.json"];
  const std::size_t last = text.rfind('}');
  constexpr std::size_t step = 7;  // ends in and between all kinds of words
  for (std::size_t size = last % step; size <= last; size += step) {
    const std::string path = folder.write("data.json", text.substr(0, size));
    EXPECT_THROW(utils::DataFileReader reader(path), std::exception) << size;
  }
}

}  // namespace
