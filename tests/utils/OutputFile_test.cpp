#include "utils/OutputFile.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "support/TemporaryFolder.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

utils::TextBuffer buffer_of(const std::string& text) {
  utils::TextBuffer buffer;
  buffer << text;
  return buffer;
}

/// A file on a disk without room.
class FullDisk : public testing::Test {
 protected:
  FullDisk() {
    std::filesystem::create_symlink("/dev/full", name);
    CaptureStderr();
  }
  void expect_error() {
    EXPECT_EQ(
        GetCapturedStderr(),
        "Error. The file " + name + " couldn't be written completely: No space left on device.\n");
  }

  support::TemporaryFolder folder;
  std::string name = folder.file("out.txt");
};

TEST(WholeFile, HoldsWhatWasCommitted) {
  const support::TemporaryFolder folder;
  EXPECT_TRUE(utils::WholeFile(folder.file("out.txt")).commit(buffer_of("all of it\n")));
  EXPECT_EQ(folder.read("out.txt"), "all of it\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

TEST(WholeFile, LeavesAnEarlierFileUntilItIsComplete) {
  const support::TemporaryFolder folder;
  folder.write("out.txt", "earlier\n");
  utils::WholeFile file(folder.file("out.txt"));
  utils::TextBuffer buffer = buffer_of(std::string(3 << 20, 'x'));
  file.drain(buffer);
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  buffer << '\n';
  file.commit(buffer);
  EXPECT_EQ(folder.read("out.txt"), std::string(3 << 20, 'x') + "\n");
}

TEST(WholeFile, LeavesAnEarlierFileWhenItIsNeverCommitted) {
  const support::TemporaryFolder folder;
  folder.write("out.txt", "earlier\n");
  { const utils::WholeFile file(folder.file("out.txt")); }
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
}

TEST(WholeFileDeathTest, LeavesAnEarlierFileWhenTheProcessIsKilledInMidFile) {
  const support::TemporaryFolder folder;
  folder.write("out.txt", "earlier\n");
  const auto write_and_be_killed = [&] {
    utils::WholeFile file(folder.file("out.txt"));
    utils::TextBuffer buffer = buffer_of(std::string(3 << 20, 'x'));
    file.drain(buffer);
    std::raise(SIGKILL);
  };
  EXPECT_EXIT(write_and_be_killed(), testing::KilledBySignal(SIGKILL), "");
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  EXPECT_TRUE(folder.has("out.txt.part"));
  utils::WholeFile(folder.file("out.txt")).commit(buffer_of("later\n"));
  EXPECT_EQ(folder.read("out.txt"), "later\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

TEST(LineFileDeathTest, HoldsEveryLineThatWasWrittenBeforeTheProcessIsKilled) {
  const support::TemporaryFolder folder;
  const auto write_and_be_killed = [&] {
    utils::LineFile file;
    file.open(folder.file("out.txt"));
    file.write(buffer_of("one\n"));
    file.write(buffer_of("two\n"));
    std::raise(SIGKILL);
  };
  EXPECT_EXIT(write_and_be_killed(), testing::KilledBySignal(SIGKILL), "");
  EXPECT_EQ(folder.read("out.txt"), "one\ntwo\n");
}

TEST(WholeFile, DrainsOnlyALargeBuffer) {
  const support::TemporaryFolder folder;
  utils::WholeFile file(folder.file("out.txt"));
  utils::TextBuffer buffer = buffer_of("short");
  file.drain(buffer);
  EXPECT_EQ(buffer.text(), "short");
  buffer << std::string(2 << 20, 'x');
  file.drain(buffer);
  EXPECT_EQ(buffer.text(), "");
  file.commit(buffer_of("end"));
  EXPECT_EQ(folder.read("out.txt"), "short" + std::string(2 << 20, 'x') + "end");
}

TEST(WholeFile, WritesThroughALinkInsteadOfReplacingIt) {
  const support::TemporaryFolder folder;
  folder.write("target.txt", "earlier, and longer\n");
  std::filesystem::create_symlink(folder.file("target.txt"), folder.file("out.txt"));
  utils::WholeFile(folder.file("out.txt")).commit(buffer_of("new\n"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("out.txt")));
  EXPECT_EQ(folder.read("target.txt"), "new\n");
}

TEST(WholeFile, LeavesTheFileThatALinkLeadsToUntilItIsComplete) {
  const support::TemporaryFolder folder;
  folder.write("target.txt", "earlier\n");
  std::filesystem::create_symlink("target.txt", folder.file("out.txt"));
  utils::WholeFile file(folder.file("out.txt"));
  utils::TextBuffer buffer = buffer_of(std::string(3 << 20, 'x'));
  file.drain(buffer);
  EXPECT_EQ(folder.read("target.txt"), "earlier\n");
  file.commit(buffer_of("end"));
  EXPECT_EQ(folder.read("target.txt"), std::string(3 << 20, 'x') + "end");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("out.txt")));
}

TEST(WholeFile, NeverWritesThroughALinkOfItsTemporaryName) {
  const support::TemporaryFolder folder;
  folder.write("precious.txt", "precious\n");
  std::filesystem::create_symlink("precious.txt", folder.file("out.txt.part"));
  utils::WholeFile(folder.file("out.txt")).commit(buffer_of("new\n"));
  EXPECT_EQ(folder.read("precious.txt"), "precious\n");
  EXPECT_EQ(folder.read("out.txt"), "new\n");
  EXPECT_FALSE(std::filesystem::is_symlink(folder.file("out.txt")));
}

TEST(WholeFile, NeverWaitsForTheReaderOfAPipeOfItsTemporaryName) {
  const support::TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.file("out.txt.part").c_str(), 0600), 0);
  utils::WholeFile(folder.file("out.txt")).commit(buffer_of("new\n"));
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.file("out.txt")));
  EXPECT_EQ(folder.read("out.txt"), "new\n");
}

/// A file that the run has read.
class InputOfTheRun : public testing::Test {
 protected:
  InputOfTheRun() {
    folder.write("input.txt", "1 2 3\n");
    folder.write("out.txt.part", "4 5 6\n");
    std::filesystem::create_symlink("input.txt", folder.file("link.txt"));
    CaptureStderr();
  }
  void expect_refusal(const std::string& result, const std::string& input) {
    utils::open_input_file(folder.file(input));
    const std::string before = folder.read(input);
    const std::string name = folder.file(result);
    EXPECT_FALSE(utils::WholeFile(name).commit(buffer_of("new\n")));
    EXPECT_EQ(folder.read(input), before);
    EXPECT_EQ(GetCapturedStderr(), "Error. The file " + name +
                                       " isn't written: it, or its name with .part, is an input "
                                       "file of this run.\n");
  }
  support::TemporaryFolder folder;
};

TEST_F(InputOfTheRun, IsNotReplacedByAResult) { expect_refusal("input.txt", "input.txt"); }

TEST_F(InputOfTheRun, IsNotReplacedThroughALink) { expect_refusal("link.txt", "input.txt"); }

TEST_F(InputOfTheRun, IsNotReplacedByATemporaryFile) { expect_refusal("out.txt", "out.txt.part"); }

TEST(WholeFile, FailsWhenItCannotBePutInItsPlaceAndKeepsTheCompleteFile) {
  const support::TemporaryFolder folder;
  const std::string name = folder.file("out.txt");
  utils::WholeFile file(name);
  folder.write("out.txt/inside", "");  // a folder takes the place meanwhile
  CaptureStderr();
  EXPECT_FALSE(file.commit(buffer_of("complete\n")));
  EXPECT_EQ(GetCapturedStderr(), "Error. The file " + name +
                                     " couldn't be put in its place: Is a directory; it is "
                                     "complete as " +
                                     name + ".part.\n");
  EXPECT_EQ(folder.read("out.txt.part"), "complete\n");
}

TEST(WholeFile, WarnsOncePerNameWhenItCannotBeCreated) {
  const support::TemporaryFolder folder;
  const std::string first = folder.file("missing/first.txt");
  const std::string second = folder.file("missing/second.txt");
  CaptureStderr();
  for (int i = 0; i < 3; ++i) {
    utils::WholeFile(first).commit(buffer_of("lost\n"));
    utils::WholeFile(second).commit(buffer_of("lost\n"));
  }
  const std::string end = " couldn't be created: its results are lost.\n";
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: The file " + first + end + "Warning: The file " + second + end);
}

TEST_F(FullDisk, EndsTheRunForAWholeFile) {
  EXPECT_FALSE(utils::WholeFile(name).commit(buffer_of("lost\n")));
  expect_error();
}

TEST_F(FullDisk, IsNoticedWhenALargeBufferIsDrained) {
  utils::WholeFile file(name);
  utils::TextBuffer buffer = buffer_of(std::string(3 << 20, 'x'));
  file.drain(buffer);
  EXPECT_FALSE(file.commit(buffer));
  expect_error();
}

TEST(WholeFile, WarnsWhenAFolderStandsInItsPlace) {
  const support::TemporaryFolder folder;
  folder.write("out.txt/inside", "");
  CaptureStderr();
  EXPECT_TRUE(utils::WholeFile(folder.file("out.txt")).commit(buffer_of("lost\n")));
  EXPECT_EQ(GetCapturedStderr(), "Warning: The file " + folder.file("out.txt") +
                                     " couldn't be created: its results are lost.\n");
}

/// A file that several processes write.
class SharedFile : public testing::Test {
 protected:
  int write(const utils::SharedPart& part, std::size_t place, const std::string& text) const {
    utils::WritableFile other;
    if (const int error = utils::open_shared(part, other); error != 0) return error;
    return other.write_at(place, text);
  }

  support::TemporaryFolder folder;
  std::string name = folder.file("out.txt");
};

TEST_F(SharedFile, HoldsWhatOthersWrote) {
  folder.write("out.txt", "earlier\n");
  utils::WholeFile file(name);
  const auto part = file.share();
  ASSERT_TRUE(part);
  EXPECT_EQ(part->name, name + ".part");
  utils::WritableFile one, two;
  EXPECT_EQ(utils::open_shared(*part, one), 0);
  EXPECT_EQ(utils::open_shared(*part, two), 0);
  EXPECT_EQ(two.write_at(5, "end\n"), 0);
  EXPECT_EQ(one.write_at(0, "begin"), 0);
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  EXPECT_TRUE(file.commit_shared(9, 0));
  EXPECT_EQ(folder.read("out.txt"), "beginend\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

TEST_F(SharedFile, IsOpenedByNobodyWhoSeesAnotherOneOfItsName) {
  utils::WholeFile file(name);
  const auto part = file.share();
  ASSERT_TRUE(part);
  std::filesystem::resize_file(part->name, 3);
  EXPECT_EQ(write(*part, 0, "lost"), ENOENT);
  std::filesystem::remove(part->name);
  EXPECT_EQ(write(*part, 0, "lost"), ENOENT);
  EXPECT_FALSE(folder.has("out.txt.part"));
}

TEST_F(SharedFile, IsWrittenAloneWhereOthersCannot) {
  utils::WholeFile file(name);
  ASSERT_TRUE(file.share());
  file.unshare();
  EXPECT_TRUE(file.commit(buffer_of("alone\n")));
  EXPECT_EQ(folder.read("out.txt"), "alone\n");
}

TEST_F(SharedFile, IsNotPutInItsPlaceWhereOneOfThemFailed) {
  folder.write("out.txt", "earlier\n");
  utils::WholeFile file(name);
  ASSERT_TRUE(file.share());
  CaptureStderr();
  EXPECT_FALSE(file.commit_shared(9, ENOSPC));
  EXPECT_EQ(GetCapturedStderr(), "Error. The file " + name +
                                     " couldn't be written completely: No space left on device.\n");
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

TEST_F(SharedFile, IsNoneWhereItIsWrittenDirectly) {
  std::filesystem::create_symlink("/dev/null", name);
  EXPECT_FALSE(utils::WholeFile(name).share());
  CaptureStderr();
  EXPECT_FALSE(utils::WholeFile(folder.file("missing/out.txt")).share());
  EXPECT_NE(GetCapturedStderr(), "");
}

TEST(LineFile, GrowsLineByLineAndEachLineIsOnTheDiskAtOnce) {
  const support::TemporaryFolder folder;
  folder.write("out.txt", "earlier\n");
  utils::LineFile file;
  file.open(folder.file("out.txt"));
  EXPECT_TRUE(file.is_open());
  EXPECT_EQ(folder.read("out.txt"), "");
  EXPECT_TRUE(file.write(buffer_of("one\n")));
  EXPECT_EQ(folder.read("out.txt"), "one\n");
  EXPECT_TRUE(file.write(buffer_of("two\n")));
  EXPECT_EQ(folder.read("out.txt"), "one\ntwo\n");
  EXPECT_TRUE(file.close());
}

TEST(LineFile, WarnsAndLosesItsLinesWhenItCannotBeCreated) {
  const support::TemporaryFolder folder;
  const std::string name = folder.file("missing/lines.txt");
  CaptureStderr();
  utils::LineFile file;
  file.open(name);
  EXPECT_TRUE(file.write(buffer_of("one\n")));  // lost, but not the run
  EXPECT_TRUE(file.write(buffer_of("two\n")));
  EXPECT_FALSE(file.is_open());
  EXPECT_EQ(GetCapturedStderr(), "Warning: The file " + name + " couldn't be created.\n");
}

TEST_F(FullDisk, EndsTheRunForALineFileAndIsSaidOnce) {
  utils::LineFile file;
  file.open(name);
  EXPECT_FALSE(file.write(buffer_of("one\n")));
  file.write(buffer_of("two\n"));
  EXPECT_TRUE(file.is_open());
  expect_error();
}

/// Closes the file behind the back of those who write it, so that their next call fails.
void lose(const std::string& name) {
  for (int file = 3; file < 1024; ++file) {
    std::error_code none;
    const auto link = "/proc/self/fd/" + std::to_string(file);
    if (std::filesystem::read_symlink(link, none) == name) close(file);
  }
}

TEST(LineFile, FailsWhenItsLastLinesAreLostAsItIsClosed) {
  const support::TemporaryFolder folder;
  const std::string name = folder.file("lines.txt");
  utils::LineFile file;
  file.open(name);
  file.write(buffer_of("one\n"));
  CaptureStderr();
  lose(name);
  EXPECT_FALSE(file.close());
  EXPECT_EQ(GetCapturedStderr(),
            "Error. The file " + name + " couldn't be written completely: Bad file descriptor.\n");
}

TEST(WholeFile, FailsAndKeepsAnEarlierFileWhenItCannotBeClosed) {
  const support::TemporaryFolder folder;
  const std::string name = folder.file("out.txt");
  folder.write("out.txt", "earlier\n");
  utils::WholeFile file(name);
  CaptureStderr();
  lose(name + ".part");
  EXPECT_FALSE(file.commit(buffer_of("")));
  EXPECT_EQ(GetCapturedStderr(),
            "Error. The file " + name + " couldn't be written completely: Bad file descriptor.\n");
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

/// Runs the statement in a process whose files may not grow beyond a size.
template <class Statement>
void run_with_file_size_limit(rlim_t bytes, Statement statement) {
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t usual = std::exchange(limit.rlim_cur, bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
    statement();
    limit.rlim_cur = usual;  // a build that counts lines writes its counters at the end
    setrlimit(RLIMIT_FSIZE, &limit);
    _exit(0);
  }
  waitpid(process, nullptr, 0);
}

TEST(LineFile, KeepsItsCompleteLinesWhenNoMoreCanBeWritten) {
  const support::TemporaryFolder folder;
  const std::string line = std::string(99, 'x') + "\n";
  for (const bool is_large : {false, true}) {
    const std::string last = is_large ? std::string(5000, 'y') + "\n" : line;
    run_with_file_size_limit(250, [&] {
      utils::LineFile file;
      file.open(folder.file("lines.txt"));
      file.write(buffer_of(line));
      file.write(buffer_of(line));
      file.write(buffer_of(last));
    });
    EXPECT_EQ(folder.read("lines.txt"), line + line);
  }
}

TEST(WholeFile, LeavesAnEarlierFileWhenNoMoreCanBeWritten) {
  const support::TemporaryFolder folder;
  folder.write("out.txt", "earlier\n");
  run_with_file_size_limit(250, [&] {
    utils::WholeFile(folder.file("out.txt")).commit(buffer_of(std::string(300, 'x')));
  });
  EXPECT_EQ(folder.read("out.txt"), "earlier\n");
  EXPECT_FALSE(folder.has("out.txt.part"));
}

/// Lines that a run wrote before it was interrupted, and what it wrote after its checkpoint.
class ContinuedLines : public testing::Test {
 protected:
  ContinuedLines() {
    utils::LineFile file;
    file.open(name);
    file.write(buffer_of("first\n"));
    file.write(buffer_of("second\n"));
    lines = file.lines();
    file.write(buffer_of("after the checkpoint\n"));
    file.close();
  }
  std::string refusal() const {
    try {
      utils::require_lines(lines);
    } catch (const utils::FatalError& error) {
      return error.text();
    }
    return "";
  }

  support::TemporaryFolder folder;
  std::string name = folder.file("out.txt");
  utils::WrittenLines lines;
};

TEST_F(ContinuedLines, ReplaceWhatCameAfterThem) {
  EXPECT_EQ(refusal(), "");
  EXPECT_EQ(folder.read("out.txt"), "first\nsecond\nafter the checkpoint\n");
  utils::LineFile file;
  file.open_behind(lines);
  EXPECT_TRUE(file.is_open());
  EXPECT_EQ(folder.read("out.txt"), "first\nsecond\n");
  file.write(buffer_of("third\n"));
  const utils::WrittenLines more = file.lines();
  EXPECT_TRUE(file.close());
  EXPECT_EQ(folder.read("out.txt"), "first\nsecond\nthird\n");

  utils::LineFile in_one_go;
  in_one_go.open(folder.file("other.txt"));
  in_one_go.write(buffer_of("first\nsecond\n"));
  in_one_go.write(buffer_of("third\n"));
  EXPECT_EQ(more.checksum, in_one_go.lines().checksum);
  EXPECT_EQ(more.size, in_one_go.lines().size);
}

TEST_F(ContinuedLines, MustBeThereAsTheyWere) {
  const auto says = [&](const std::string& text) {
    return "Error. The result file " + name + " " + text + ": it can't be continued.\n";
  };
  folder.write("out.txt", "first\nsecond");
  EXPECT_EQ(refusal(), says("has 12 bytes of the 13 that it had at the checkpoint"));
  folder.write("out.txt", "first\nsacond\n");
  EXPECT_EQ(refusal(), says("doesn't hold any more what it held at the checkpoint"));
  std::filesystem::remove(name);
  EXPECT_EQ(refusal(), says("isn't there any more"));
  std::filesystem::create_directory(name);
  EXPECT_EQ(refusal(), says("is a folder"));
  lines.name = "/dev/null";
  EXPECT_EQ(refusal(), "");
  folder.write("input.txt", "first\nsecond\n");
  lines.name = folder.file("input.txt");
  utils::note_input_file(lines.name);
  EXPECT_NE(refusal().find("is an input file of this run"), std::string::npos);
}

TEST_F(ContinuedLines, OfADeviceGoOnWithoutThem) {
  lines.name = "/dev/null";
  utils::LineFile file;
  file.open_behind(lines);
  EXPECT_TRUE(file.write(buffer_of("more\n")));
}

}  // namespace
