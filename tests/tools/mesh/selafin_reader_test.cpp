#include "mesh/selafin_reader.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/ImportTest.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Mesh;

template <class Unsigned>
std::string bytes_of(Unsigned value) {
  std::string bytes;
  for (std::size_t i = sizeof value; i-- > 0;) bytes += static_cast<char>((value >> (8 * i)) & 255);
  return bytes;
}

std::string record(const std::string& bytes) {
  const std::string size = bytes_of(static_cast<std::uint32_t>(bytes.size()));
  return size + bytes + size;
}

std::string integers(const std::vector<int>& values) {
  std::string bytes;
  for (const int value : values) bytes += bytes_of(static_cast<std::uint32_t>(value));
  return record(bytes);
}

std::string padded(std::string text, std::size_t size) {
  text.resize(size, ' ');
  return text;
}

/// Two triangles in a square of 2 m, with a depth and a bottom.
struct SelafinFile {
  bool is_double = false, has_date = false, has_step = true;
  std::string bottom = "BOTTOM";
  std::vector<int> elements = {1, 2, 3, 1, 3, 4};
  int n_nodes = 3;

  std::string numbers(const std::vector<double>& values) const {
    std::string bytes;
    for (const double value : values) {
      bytes += is_double ? bytes_of(std::bit_cast<std::uint64_t>(value))
                         : bytes_of(std::bit_cast<std::uint32_t>(static_cast<float>(value)));
    }
    return record(bytes);
  }
  std::string text() const {
    std::string text = record(padded("a square", 80)) + integers({2, 0});
    text += record(padded("WATER DEPTH     M", 32)) + record(padded(padded(bottom, 16) + "M", 32));
    text += integers({1, 0, 1000, 2000, 0, 0, 0, 0, 0, has_date ? 1 : 0});
    if (has_date) text += integers({2026, 5, 1, 0, 0, 0});
    text += integers({static_cast<int>(elements.size()) / n_nodes, 4, n_nodes, 1});
    text += integers(elements) + integers({1, 2, 3, 4});
    text += numbers({0.0, 2.0, 2.0, 0.0}) + numbers({0.0, 0.0, 2.0, 2.0});
    if (has_step) text += numbers({0.0}) + numbers({1, 1, 1, 1}) + numbers({5.5, 6.5, 7.5, 8.5});
    return text;
  }
};

class Selafin : public testing::Test {
 protected:
  Mesh read(const std::string& text) {
    return mesh_import::read_selafin(folder.write("m.slf", text));
  }
  support::TemporaryFolder folder;
};

TEST_F(Selafin, IsReadInSingleAndDoublePrecision) {
  for (const bool is_double : {false, true}) {
    SelafinFile file;
    file.is_double = is_double;
    file.has_date = is_double;
    const Mesh mesh = read(file.text());
    EXPECT_EQ(mesh.format,
              std::string("SELAFIN, ") + (is_double ? "double" : "single") + " precision");
    ASSERT_EQ(mesh.nodes.size(), 4U);
    EXPECT_EQ(mesh.nodes[2].x, 1002.0);
    EXPECT_EQ(mesh.nodes[2].y, 2002.0);
    EXPECT_EQ(mesh.nodes[2].z, 7.5);
    ASSERT_EQ(mesh.cells.size(), 2U);
    EXPECT_EQ(mesh.cells[1].nodes, (std::array<int, 4>{0, 2, 3, -1}));
  }
}

TEST_F(Selafin, MayHoldQuadrilateralsAndNoBottom) {
  SelafinFile file;
  file.elements = {1, 2, 3, 4};
  file.n_nodes = 4;
  file.bottom = "BOTTOM FRICTION";
  const Mesh mesh = read(file.text());
  EXPECT_TRUE(mesh.cells.at(0).is_quad());
  EXPECT_EQ(mesh.nodes[2].z, 0.0);
  EXPECT_EQ(mesh.remarks, std::vector<std::string>{"The file holds no bottom: all elevations are "
                                                   "0."});
  file.bottom = "FOND";
  file.has_step = false;
  EXPECT_EQ(read(file.text()).remarks.size(), 1U);
}

TEST_F(Selafin, ThatIsCutOffOrDamagedIsRefused) {
  const std::string text = SelafinFile().text();
  for (std::size_t size = 0; size < text.size(); ++size) {
    const std::string error = support::message_of([&] { read(text.substr(0, size)); });
    if (size == SelafinFile{.has_step = false}.text().size()) continue;  // a mesh without results
    EXPECT_TRUE(support::contains(error, "m.slf")) << size << ": " << error;
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::string damaged = text;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x85);
    support::message_of([&] { read(damaged); });
  }
  SelafinFile file;
  file.elements[4] = 9;
  EXPECT_TRUE(support::contains(support::message_of([&] { read(file.text()); }),
                                "the elements: found the point 9 in element 2, expected 1 to 4"));
}

using ImportSelafin = support::ImportTest;

TEST_F(ImportSelafin, MakesACaseThatRuns) {
  folder.write("m.slf", SelafinFile().text());
  const auto result = import({"m.slf", "case", "--level", "9", "--end", "1", "--friction", "0.03"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(support::contains(result.out,
                                "Read m.slf (SELAFIN, single precision): 4 nodes, 2 "
                                "triangles."))
      << result.out;
  run_case();
}

}  // namespace
