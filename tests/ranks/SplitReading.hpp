// A case in its files, read whole and by ranks that each read pieces of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "case/read_case.hpp"
#include "case/write_case.hpp"
#include "ranks/cut_along_curve.hpp"
#include "ranks/read_share.hpp"
#include "support/TemporaryFolder.hpp"
#include "utils/bytes.hpp"
#include "utils/stop.hpp"

namespace test_ranks {

using cases::Number;
using engine::at;

template <class Value>
utils::Bytes bytes_that_are(const Value& value) {
  utils::Bytes bytes;
  utils::put_into(bytes, value);
  return bytes;
}

/// Writes a case to a folder; answers the name of its data file, which names the others from
/// everywhere.
inline std::string write_case(const cases::Case& contents, const support::TemporaryFolder& folder) {
  std::vector<std::string> names;
  std::string data;
  cases::RunRequest run;
  run.name = "split";
  run.output_folder = "out/";
  run.envelope_interval = 1.0;
  cases::write_case(contents, run, [&](const std::string& name, const std::string& text) {
    if (name == cases::data_file_name) {
      data = text;
    } else {
      names.push_back(name);
      folder.write(name, text);
    }
  });
  for (const std::string& name : names) {
    const auto place = data.find('"' + name + '"');
    if (place != std::string::npos) data.replace(place + 1, name.size(), folder.file(name));
  }
  return folder.write(cases::data_file_name, data);
}

/// What reading told.
struct Told {
  std::string log, console;
  std::vector<std::string> warnings;
  std::string error, output;  ///< that it ended with
  int status = 0;

  friend bool operator==(const Told&, const Told&) = default;
};

class Hearer final : public cases::Diagnostics {
 public:
  explicit Hearer(Told& told) : told_(told) {}
  void error(const std::string& message) override { utils::fatal(message); }
  void warn(const std::string& message) override { told_.warnings.push_back(message); }

 private:
  Told& told_;
};

/// Calls read(listeners, diagnostics) and notes what it tells.
template <class Read>
Told told_by(const Read& read) {
  Told told;
  std::ostringstream log, out;
  utils::Console console(out);
  Hearer hearer(told);
  try {
    read(cases::Listeners{log, console}, hearer);
  } catch (const utils::FatalError& error) {
    told.error = error.text();
    told.output = error.output();
    told.status = error.status();
  } catch (const std::exception& error) {
    told.error = error.what() + std::string("\n");
    told.status = -1;
  }
  told.log = log.str();
  told.console = out.str();
  return told;
}

inline std::ostream& operator<<(std::ostream& out, const Told& told) {
  for (const std::string& warning : told.warnings) out << warning << '\n';
  return out << told.error << told.output << told.status << '\n' << told.log;
}

/// A case that was read whole, and what its ranks are to have of it.
class WholeReading {
 public:
  explicit WholeReading(const std::string& data_file) : data_file_(data_file) {
    told_ = told_by([&](const cases::Listeners& listeners, cases::Diagnostics& diagnostics) {
      read_ = cases::read_case(data_file, listeners, diagnostics);
    });
  }

  const Told& told() const { return told_; }
  const cases::Case& contents() const { return read_.contents; }

  /// Called by all ranks of a group.
  void expect_same(ranks::Group& group) const {
    ranks::ReadShare found;
    const Told told =
        told_by([&](const cases::Listeners& listeners, cases::Diagnostics& diagnostics) {
          found = ranks::read_share(group, data_file_, listeners, diagnostics);
        });
    if (group.rank() == 0) {
      EXPECT_EQ(told, told_) << group.size() << " ranks";
    } else {
      EXPECT_EQ(std::tie(told.error, told.output, told.status),
                std::tie(told_.error, told_.output, told_.status));
      EXPECT_EQ(told.log, "");
      EXPECT_TRUE(told.warnings.empty());
    }
    if (told_.status == 0) expect_same_share(group, found);
  }

 private:
  void expect_same_share(ranks::Group& group, const ranks::ReadShare& found) const {
    const cases::Case& whole = read_.contents;
    const auto cells = ranks::cut_along_curve(whole.mesh, group.size());
    const int rank = group.rank();
    for (std::size_t k = 0; k < found.owners.size(); ++k) {
      const auto& of_owner = cells.at(at(found.owners[k]));
      EXPECT_TRUE(std::binary_search(of_owner.begin(), of_owner.end(),
                                     found.cells.begin(rank) + static_cast<Number>(k)));
    }
    if (rank == 0) {
      EXPECT_EQ(found.area_loss.remark(), read_.area_loss.remark());
    }
    EXPECT_EQ(found.data.nodes, read_.data.nodes);
    ranks::Share expected;
    if (rank < static_cast<int>(cells.size())) {
      cases::PartCutter cutter(whole);
      expected = ranks::share_of(cutter, cells[at(rank)], ranks::owners_of(cells),
                                 cases::rings_of(whole.scheme));
      EXPECT_FALSE(expected.part.cell_number.empty());
    } else {
      EXPECT_EQ(found.share.part.owned, 0);
      return;
    }
    const cases::Part &part = found.share.part, &expected_part = expected.part;
    EXPECT_EQ(part.cell_number, expected_part.cell_number);
    EXPECT_EQ(part.edge_number, expected_part.edge_number);
    EXPECT_EQ(part.node_number, expected_part.node_number);
    EXPECT_EQ(part.boundary_number, expected_part.boundary_number);
    EXPECT_EQ(part.border, expected_part.border);
    EXPECT_TRUE(bytes_that_are(part.contents.mesh) == bytes_that_are(expected_part.contents.mesh));
    EXPECT_TRUE(bytes_that_are(part.contents.fields) ==
                bytes_that_are(expected_part.contents.fields));
    EXPECT_TRUE(bytes_that_are(found.share) == bytes_that_are(expected)) << "rank " << rank;
  }

  std::string data_file_;
  cases::ReadCase read_;
  Told told_;
};

}  // namespace test_ranks
