// What readers of pieces of a file find, side by side: the values of whole reading, or its message.
#include "case/text_pieces.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

#include "case/mesh_records.hpp"
#include "case/read_fields.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"
#include "support/trials.hpp"
#include "utils/number_text.hpp"

namespace {

using cases::Number;

/// What came of reading, as text: values, and then a message.
std::string text_of(const std::vector<double>& values, const std::string& message) {
  std::string text;
  for (const double value : values) text += utils::exact_text(value) + " ";
  return text + message;
}

/// A kind of file: how it is opened and how its records are read.
struct Kind {
  cases::RecordShape shape;
  std::size_t header;  ///< least number of tokens of a record; 0: the file has no count
  Number total;        ///< of a file without a count
  /// Adds the values of records to those before.
  void (*read)(utils::TextScanner& file, const cases::Records& records,
               std::vector<double>& values);
};

constexpr Number n_nodes = 40, n_cells = 30, n_rows = 12;

void read_nodes(utils::TextScanner& file, const cases::Records& records,
                std::vector<double>& values) {
  cases::read_each(file, "node", records, [&](Number) {
    double node[3];
    cases::read_node(file, node);
    values.insert(values.end(), node, node + 3);
  });
}
void read_cells(utils::TextScanner& file, const cases::Records& records,
                std::vector<double>& values) {
  std::vector<Number> nodes;
  cases::read_each(file, "cell", records, [&](Number) {
    cases::read_cell(file, n_nodes, nodes);
    values.insert(values.end(), nodes.begin(), nodes.end());
  });
}
void read_edges(utils::TextScanner& file, const cases::Records& records,
                std::vector<double>& values) {
  cases::EdgeRecord edge;
  cases::read_each(file, "edge", records, [&](Number) {
    cases::read_edge(file, n_nodes, n_cells, edge, [](int) {});
    for (const int value : {edge.left, edge.right, edge.node1, edge.node2, edge.code}) {
      values.push_back(value);
    }
    values.push_back(edge.value);
    values.push_back(static_cast<double>(edge.file.size()));
  });
}
template <int columns>
void read_rows(utils::TextScanner& file, const cases::Records& records,
               std::vector<double>& values) {
  cases::read_each(file, "cell", records, [&](Number) {
    for (int i = 0; i < columns; ++i) values.push_back(file.read_number("value"));
  });
}
void read_ids(utils::TextScanner& file, const cases::Records& records,
              std::vector<double>& values) {
  const auto terms = cases::read_term_run(file, records, {1, 7}, cases::end_at_unknown_term);
  values.insert(values.end(), terms.begin(), terms.end());
}

constexpr Kind nodes_kind{cases::records_of(3), cases::tokens_of_node, 0, read_nodes};
constexpr Kind cells_kind{cases::shape_of_cells, cases::tokens_of_cell, 0, read_cells};
constexpr Kind edges_kind{cases::shape_of_edges, cases::tokens_of_edge, 0, read_edges};
constexpr Kind rows_kind{cases::records_of(1), 0, n_rows, read_rows<1>};
constexpr Kind states_kind{cases::records_of(3), 0, n_rows, read_rows<3>};
constexpr Kind ids_kind{cases::records_of(1), 0, n_rows, read_ids};

std::string found_whole(const std::string& name, const Kind& kind) {
  std::vector<double> values;
  try {
    utils::TextScanner file(name);
    const Number total =
        kind.header > 0 ? file.read_count("number of records", kind.header) : kind.total;
    kind.read(file, cases::Records::all(total), values);
  } catch (const utils::FatalError& error) {
    return text_of({}, error.what());
  }
  return text_of(values, "");
}

/// The same by readers of the pieces between cuts, ascending.
std::string found_in_pieces(const std::string& name, const Kind& kind,
                            const std::vector<std::int64_t>& cuts) {
  std::vector<double> values;
  std::optional<std::string> message;
  try {
    const cases::TextHeader header =
        kind.header > 0 ? cases::read_header(name, kind.header) : cases::read_start(name);
    const Number total = kind.header > 0 ? header.count : kind.total;
    std::vector<std::int64_t> bounds = {header.records.begin};
    for (const std::int64_t cut : cuts) bounds.push_back(std::max(cut, bounds.front()));
    bounds.push_back(header.records.end);
    cases::Passage before;
    for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
      const cases::TextPiece piece =
          cases::piece_between(name, header.records, bounds[i], bounds[i + 1]);
      const cases::Passage behind = cases::PassageTable(name, piece, kind.shape).behind(before);
      const bool is_last = i + 2 == bounds.size();
      const auto own = cases::records_in(piece, kind.shape, before, behind, total, is_last);
      before = behind;
      if (own.records.size() == 0) continue;
      cases::PieceScanner file(name, own);
      try {
        kind.read(file, own.records, values);
      } catch (const utils::FatalError& error) {
        if (!message) message = error.what();
      }
    }
  } catch (const utils::FatalError& error) {
    message = error.what();
  }
  return message ? text_of({}, *message) : text_of(values, "");
}

class TextPieces : public testing::Test {
 protected:
  /// Every cut in two, and every number of pieces of one length.
  void expect_same(const Kind& kind, const std::string& text) {
    const std::string name = folder_.write("file.txt", text);
    const std::string expected = found_whole(name, kind);
    const auto size = static_cast<std::int64_t>(text.size());
    for (std::int64_t cut = 0; cut <= size; ++cut) {
      ASSERT_EQ(found_in_pieces(name, kind, {cut}), expected) << text << "cut at " << cut;
    }
    for (std::int64_t pieces = 3; pieces <= size; pieces += 1 + pieces / 4) {
      std::vector<std::int64_t> cuts;
      for (std::int64_t k = 1; k < pieces; ++k) cuts.push_back(size * k / pieces);
      ASSERT_EQ(found_in_pieces(name, kind, cuts), expected) << text << pieces << " pieces";
    }
    std::vector<std::int64_t> everywhere;
    for (std::int64_t cut = 1; cut < size; ++cut) everywhere.push_back(cut);
    ASSERT_EQ(found_in_pieces(name, kind, everywhere), expected) << text;
  }

  /// The same text with the white space that files come with.
  void expect_same_in_any_dress(const Kind& kind, const std::string& text) {
    expect_same(kind, text);
    expect_same(kind, text.substr(0, text.size() - 1));  // no last line end
    expect_same(kind, "\xef\xbb\xbf" + text);
    expect_same(kind, "\n\n " + text + "\n \n");
    expect_same(kind, text + "and more that nobody reads 3 4 5\n");
    std::string other = text;
    std::replace(other.begin(), other.end(), ' ', '\t');
    expect_same(kind, other);
    std::replace(other.begin(), other.end(), '\n', ' ');
    expect_same(kind, other);
    std::string windows;
    for (const char c : text) windows += c == '\n' ? "\r\n\r\n" : std::string(1, c);
    expect_same(kind, windows);
  }

  support::TemporaryFolder folder_;
};

constexpr char nodes[] = "4\n0 0 0\n2.5 0 -1e-3\n2 2 3\n0.125 2 123456.789\n";
constexpr char triangles[] = "5\n3 0 1 2\n3 0 2 3\n3 3 3 3\n3 3 30 3\n3 13 3 3\n";
constexpr char polygons[] = "5\n4 0 1 2 3\n3 3 4 4\n9 3 3 3 3 3 3 3 3 3\n5 3 4 5 6 7\n3 4 4 4\n";
constexpr char edges[] =
    "8\n0 1 2 3 -1\n0 -1 3 4 -3 -0.5\n1 -4 2 3 -4 3\n0 1 3 4 1\n4 3 2 1 -1\n"
    "5 -1 5 5 -44 -33\n6 -3 6 5 -33 -4\n6 -1 3 4 -5\n";
constexpr char rows[] = "0.01\n0.02 0.03\n-4 -3 1 2 3 4 5\n6\n7e3\n";
constexpr char states[] =
    "1 0 0\n1 0.5 0\n2 0 0\n3 1 0\n4 0 -1\n1 1 1\n1 2 3\n4 5 6\n7 8 9\n0 0 0\n0 0 1\n5 5 5\n";
constexpr char ids[] = "-1 1 7 7\n1 -1 -1 1\n7 7 1 -1\n";

}  // namespace

TEST_F(TextPieces, GiveTheValuesOfTheWholeFileWhereverTheyAreCut) {
  expect_same_in_any_dress(nodes_kind, nodes);
  expect_same_in_any_dress(cells_kind, triangles);
  expect_same_in_any_dress(cells_kind, polygons);
  expect_same_in_any_dress(edges_kind, edges);
  expect_same_in_any_dress(rows_kind, rows);
  expect_same_in_any_dress(states_kind, states);
  expect_same_in_any_dress(ids_kind, ids);
}

TEST_F(TextPieces, FindAFileTooShortAsItsWholeReaderDoes) {
  for (const auto& [kind, text] :
       {std::pair{nodes_kind, std::string(nodes)}, std::pair{cells_kind, std::string(polygons)},
        std::pair{edges_kind, std::string(edges)}, std::pair{states_kind, std::string(states)},
        std::pair{ids_kind, std::string(ids)}}) {
    for (std::size_t size = 0; size < text.size(); ++size) {
      const std::string name = folder_.write("file.txt", text.substr(0, size));
      const std::string expected = found_whole(name, kind);
      for (std::size_t pieces : {2U, 3U, 7U, 20U}) {
        std::vector<std::int64_t> cuts;
        for (std::size_t k = 1; k < pieces; ++k) {
          cuts.push_back(static_cast<std::int64_t>(size * k / pieces));
        }
        ASSERT_EQ(found_in_pieces(name, kind, cuts), expected) << text.substr(0, size);
      }
    }
  }
}

TEST_F(TextPieces, TellOfADamagedFileWhatItsWholeReaderTells) {
  std::mt19937 random(29);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const std::string scraps[] = {" ", "\n", "x", "-", "3", "99", " 3 ", "-33", ".", "1e400", "\0"};
  constexpr int trials = support::trials(100);
  int refused = 0;
  for (const auto& [kind, text] :
       {std::pair{nodes_kind, std::string(nodes)}, std::pair{cells_kind, std::string(triangles)},
        std::pair{cells_kind, std::string(polygons)}, std::pair{edges_kind, std::string(edges)},
        std::pair{rows_kind, std::string(rows)}, std::pair{states_kind, std::string(states)},
        std::pair{ids_kind, std::string(ids)}}) {
    for (int trial = 0; trial < trials; ++trial) {
      std::string damaged = text;
      for (std::size_t times = 1 + below(3); times > 0; --times) {
        damaged.replace(below(damaged.size() + 1), below(3), scraps[below(std::size(scraps))]);
      }
      const std::string name = folder_.write("file.txt", damaged);
      const std::string expected = found_whole(name, kind);
      if (expected.find("Error") != std::string::npos) ++refused;
      for (std::size_t pieces : {2U, 3U, 5U, 16U}) {
        std::vector<std::int64_t> cuts;
        for (std::size_t k = 1; k < pieces; ++k) {
          cuts.push_back(static_cast<std::int64_t>(below(damaged.size() + 1)));
        }
        std::sort(cuts.begin(), cuts.end());
        ASSERT_EQ(found_in_pieces(name, kind, cuts), expected) << damaged;
      }
    }
  }
  EXPECT_GT(refused, 2 * trials);
}

TEST_F(TextPieces, OfNearlyOneLengthCoverTheFile) {
  const std::string name = folder_.write("file.txt", nodes);
  const cases::TextHeader header = cases::read_header(name, 3);
  EXPECT_EQ(header.count, 4);
  for (int pieces = 1; pieces < 80; ++pieces) {
    std::int64_t records = 0;
    cases::Passage passage;
    for (int i = 0; i < pieces; ++i) {
      const auto piece = cases::piece_of(name, header.records, i, pieces);
      passage = cases::PassageTable(name, piece, cases::records_of(3)).behind(passage);
      records = passage.records;
    }
    EXPECT_EQ(records, 4);
    EXPECT_EQ(passage.state, 0);
  }
}

TEST_F(TextPieces, OfAPipeThereAreNone) {
  EXPECT_FATAL(cases::read_start("/dev/null"), 255, "file /dev/null: .*expected a file");
  EXPECT_FATAL(cases::read_start(folder_.file("missing.txt")), 255, "missing.txt");
}
