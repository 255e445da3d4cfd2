#include "support/read_file.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/TemporaryFolder.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using support::message_of;

TEST(ReadFile, GivesEveryByte) {
  const support::TemporaryFolder folder;
  const std::string text = std::string(3'000'000, 'x') + '\0' + "\r\nend";
  EXPECT_EQ(tools::read_file(folder.write("file", text)), text);
  EXPECT_EQ(tools::read_file(folder.write("empty", "")), "");
}

TEST(ReadFile, AFileThatIsNotThereIsAnError) {
  EXPECT_EQ(message_of([] { tools::read_file("/nowhere/file"); }),
            "/nowhere/file: the file cannot be opened.");
}

TEST(ReadFile, AnErrorOfTheSystemIsNoEnd) {
  // No memory is mapped at the address 0, where reading this file begins.
  EXPECT_EQ(message_of([] { tools::read_file("/proc/self/mem"); }),
            "/proc/self/mem: the file cannot be read to its end.");
  EXPECT_EQ(message_of([] { tools::read_file("/"); }), "/: the file cannot be read to its end.");
}

}  // namespace
