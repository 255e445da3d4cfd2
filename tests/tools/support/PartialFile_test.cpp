#include "support/PartialFile.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/message_of.hpp"
#include "utils/files.hpp"

namespace {

namespace fs = std::filesystem;

class Partial : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) {
    tools::PartialStream file(folder.file(name));
    file.stream() << text;
    file.commit();
  }
  /// What is said of a name under which no file may be written.
  std::string refusal_of(const std::string& name) {
    return support::message_of([&] { write(name, "text"); });
  }

  support::TemporaryFolder folder;
};

}  // namespace

TEST_F(Partial, AnEarlierFileStaysUntilTheNewOneIsComplete) {
  folder.write("file", "old");
  {
    tools::PartialStream abandoned(folder.file("file"));
    abandoned.stream() << "half";
  }
  EXPECT_EQ(folder.read("file"), "old");
  write("file", "new");
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_FALSE(folder.has("file.part"));
}

TEST_F(Partial, ALinkUnderTheTemporaryNameIsNotFollowed) {
  folder.write("precious", "data");
  fs::create_symlink("precious", folder.file("file.part"));
  write("file", "text");
  EXPECT_EQ(folder.read("precious"), "data");
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder.file("file"))));
  EXPECT_EQ(folder.read("file"), "text");
}

TEST_F(Partial, APipeUnderTheTemporaryNameIsReplaced) {
  ASSERT_EQ(mkfifo(folder.file("file.part").c_str(), 0600), 0);
  write("file", "text");
  EXPECT_EQ(folder.read("file"), "text");
}

TEST_F(Partial, OnlyRegularFilesAreReplaced) {
  folder.write("precious", "data");
  fs::create_symlink("precious", folder.file("link"));
  fs::create_symlink("nowhere", folder.file("broken"));
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  fs::create_directory(folder.file("folder"));
  for (const auto& [name, kind] : {std::pair("link", "a link"), std::pair("broken", "a link"),
                                   std::pair("pipe", "a pipe"), std::pair("folder", "a folder")}) {
    EXPECT_EQ(refusal_of(name), "The file " + folder.file(name) + " couldn't be written: it is " +
                                    kind + "; expected the name of a regular file, or a new one.");
  }
  EXPECT_TRUE(fs::is_symlink(folder.file("link")));
  EXPECT_EQ(folder.read("precious"), "data");
  EXPECT_TRUE(fs::is_fifo(folder.file("pipe")));
}

TEST_F(Partial, ADeviceIsRefused) {
  EXPECT_TRUE(support::contains(support::message_of([] { tools::prepare_place("/dev/full"); }),
                                "it is a device"));
}

TEST_F(Partial, WhatHasBeenReadIsNotReplaced) {
  folder.write("input", "data");
  utils::open_input_file(folder.file("input"));
  EXPECT_TRUE(support::contains(refusal_of("./input"), "but it is read"));
  EXPECT_EQ(folder.read("input"), "data");
  folder.write("later", "data");
  tools::PartialStream file(folder.file("later"));
  utils::open_input_file(folder.file("later"));
  EXPECT_TRUE(support::contains(support::message_of([&] { file.commit(); }), "but it is read"));
  EXPECT_EQ(folder.read("later"), "data");
}

TEST_F(Partial, AFileThatCannotTakeItsPlaceLeavesNothing) {
  const std::string message = support::message_of([this] {
    tools::PartialStream file(folder.file("file"));
    fs::create_directory(folder.file("file"));
    file.commit();
  });
  EXPECT_TRUE(support::contains(message, "couldn't be put in its place")) << message;
  EXPECT_FALSE(folder.has("file.part"));
}

TEST_F(Partial, ANameThatIsTooLongIsAnError) {
  EXPECT_TRUE(support::contains(refusal_of(std::string(300, 'x')), "File name too long"));
  EXPECT_TRUE(support::contains(refusal_of(std::string(253, 'x')), "File name too long"));
}
