#include "utils/files.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "utils/Reader.hpp"

namespace {

using testing::ExitedWithCode;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

class OpenReader : public utils::Reader {
 public:
  using Reader::Reader;
  std::ifstream& stream() { return stream_; }
  const std::string& name() const { return name_; }
};

TEST(Files, RemoveExtensionCutsAtTheLastDot) {
  EXPECT_EQ(utils::remove_extension("out.txt"), "out");
  EXPECT_EQ(utils::remove_extension("out.tar.gz"), "out.tar");
  EXPECT_EQ(utils::remove_extension("out"), "out");
  EXPECT_EQ(utils::remove_extension("out."), "out");
  EXPECT_EQ(utils::remove_extension(".hidden"), "");
  EXPECT_EQ(utils::remove_extension("a.b/c"), "a");
  EXPECT_EQ(utils::remove_extension(""), "");
}

TEST(Files, GetExtensionAnswersWhatFollowsTheLastDot) {
  EXPECT_EQ(utils::get_extension("out.txt"), "txt");
  EXPECT_EQ(utils::get_extension("out.tar.gz"), "gz");
  EXPECT_EQ(utils::get_extension("out"), "");
  EXPECT_EQ(utils::get_extension("out."), "");
  EXPECT_EQ(utils::get_extension("a.b/c"), "b/c");
}

TEST(Files, GetPathCutsAtTheLastSeparatorOfEitherKind) {
  EXPECT_EQ(utils::get_path("a/b/c.txt"), "a/b");
  EXPECT_EQ(utils::get_path("a\\b\\c.txt"), "a\\b");
  EXPECT_EQ(utils::get_path("a/b\\c.txt"), "a/b");
  EXPECT_EQ(utils::get_path("a\\b/c.txt"), "a\\b");
  EXPECT_EQ(utils::get_path("a/"), "a");
  EXPECT_EQ(utils::get_path("/c.txt"), "");
  EXPECT_EQ(utils::get_path("c.txt"), "c.txt");
}

TEST(Files, RenameOldFileKeepsTheContentUnderTheOldName) {
  const support::TemporaryFolder folder;
  utils::rename_old_file(folder.write("out.txt", "earlier"));
  EXPECT_FALSE(folder.has("out.txt"));
  EXPECT_EQ(folder.read("out_old.txt"), "earlier");
}

TEST(Files, RenameOldFileLeavesADotAtTheEndOfANameWithoutExtension) {
  const support::TemporaryFolder folder;
  utils::rename_old_file(folder.write("out", "earlier"));
  EXPECT_EQ(folder.read("out_old."), "earlier");
}

TEST(Files, RenameOldFileCountsEvenADotInAFolderName) {
  const support::TemporaryFolder folder;
  folder.write("a_old.b/other", "");
  utils::rename_old_file(folder.write("a.b/c", "earlier"));
  EXPECT_FALSE(folder.has("a.b/c"));
  EXPECT_EQ(folder.read("a_old.b/c"), "earlier");
}

TEST(Files, RenameOldFileReplacesAnOlderOne) {
  const support::TemporaryFolder folder;
  folder.write("out_old.txt", "oldest");
  utils::rename_old_file(folder.write("out.txt", "earlier"));
  EXPECT_EQ(folder.read("out_old.txt"), "earlier");
}

TEST(Files, RenameOldFileIgnoresAFileThatIsNotThere) {
  const support::TemporaryFolder folder;
  utils::rename_old_file(folder.file("out.txt"));
  EXPECT_FALSE(folder.has("out_old.txt"));
}

TEST(Files, OpenInputFileAnswersTheOpenStream) {
  const support::TemporaryFolder folder;
  std::ifstream file = utils::open_input_file(folder.write("in.txt", "one two"));
  std::string word;
  file >> word;
  EXPECT_EQ(word, "one");
}

TEST(FilesDeathTest, OpenInputFileEndsTheRunWithoutAFile) {
  EXPECT_FATAL(utils::open_input_file("no/such.txt"), 255,
               "^Fatal error. Impossible to open file no/such\\.txt\\.\n$");
}

TEST(FilesDeathTest, OpenInputFileEndsTheRunForAnEmptyName) {
  EXPECT_FATAL(utils::open_input_file(""), 255, "^Fatal error. Impossible to open file \\.\n$");
}

TEST(FilesDeathTest, OpenInputFileEndsTheRunForAFolder) {
  const support::TemporaryFolder folder;
  EXPECT_FATAL(utils::open_input_file(folder.path()), 255,
               "^Fatal error. Impossible to open file .*quillmere_test_.*\\.\n$");
}

TEST(Reader, OpensTheFileAndKeepsItsName) {
  const support::TemporaryFolder folder;
  const std::string name = folder.write("in.txt", "7");
  OpenReader reader(name);
  int value = 0;
  reader.stream() >> value;
  EXPECT_EQ(value, 7);
  EXPECT_EQ(reader.name(), name);
}

TEST(Reader, ClosesOnceAndAcceptsASecondClose) {
  const support::TemporaryFolder folder;
  OpenReader reader(folder.write("in.txt", "7"));
  reader.close();
  EXPECT_FALSE(reader.stream().is_open());
  reader.close();
  EXPECT_TRUE(reader.stream().good());
}

TEST(ReaderDeathTest, EndsTheRunWithoutAFile) {
  EXPECT_FATAL(OpenReader("missing.txt"), 255,
               "^Fatal error. Impossible to open file missing\\.txt\\.\n$");
}

TEST(WriteAndDisplay, WritesToLogAndConsoleAndAddsNoLineEnd) {
  std::ostringstream log, out;
  utils::Console console(out);
  utils::write_and_display(log, console, "one");
  utils::write_and_display(log, console, "two\n");
  EXPECT_EQ(out.str(), "onetwo\n");
  EXPECT_EQ(log.str(), "onetwo\n");
}

TEST(WriteAndDisplay, WritesToTheLogAloneWhenTheEchoIsOff) {
  std::ostringstream log, out;
  utils::Console console(out);
  console.mute();
  utils::write_and_display(log, console, "one\n");
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(log.str(), "one\n");
}

TEST(PrintDelimitator, WritesFortyNineEqualSignsToTheLogAlone) {
  std::ostringstream log;
  CaptureStdout();
  utils::print_delimitator(log);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(log.str(), "=================================================\n");
  EXPECT_EQ(log.str().size(), 50U);
}

TEST(Files, AnInputFileIsKnownInEveryWorkingDirectory) {
  const support::TemporaryFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  folder.write("input.txt", "1");
  std::filesystem::current_path(folder.path());
  utils::open_input_file("input.txt");
  std::filesystem::current_path(before);
  EXPECT_TRUE(utils::is_input_file(folder.file("input.txt")));
  EXPECT_FALSE(utils::is_input_file(folder.write("other.txt", "1")));
}

}  // namespace
