#include "output/ResultsFile.hpp"

#include <filesystem>

#include "output/OutputTest.hpp"
#include "utils/stop.hpp"

namespace {

class Results : public OutputTest {
 protected:
  Results() {
    data.output_folder = prefix();
    data.results = cases::ResultsRequest{"results.nc", "times.txt", false};
    cell(0).U.set_values(2.0, 6.0, 8.0);
  }
  fields::WholeListedMesh mesh() const { return {contents, {0.0, 0.0}}; }
  void begin(ResultsFile& file) const {
    fields::WholeListedMesh listed = mesh();
    file.begin(listed);
  }
  std::string text() const { return folder.read("results.nc"); }
  int snapshots() const { return static_cast<unsigned char>(text().at(7)); }
  void write_some(ResultsFile& file, int count) {
    for (int i = 0; i < count; ++i) {
      cell(0).U.set_values(2.0 + i, 6.0, 8.0);
      file.WriteMeasure(flow);
    }
  }
  /// Where a file stands that a run has left behind so many snapshots.
  ResultsPosition position_behind(int snapshots) {
    ResultsFile file(data, times, contents, mesh());
    begin(file);
    write_some(file, snapshots);
    file.wait();
    return file.position();
  }

  cases::DataFile data;
  const std::vector<double> times{0.0, 1.0, 2.0, 3.0};
};

TEST_F(Results, TakeTheirNameWithTheFirstSnapshot) {
  folder.write("results.nc", "earlier");
  ResultsFile file(data, times, contents, mesh());
  begin(file);
  EXPECT_EQ(text(), "earlier");
  file.WriteMeasure(flow);
  file.wait();
  EXPECT_EQ(snapshots(), 1);
  EXPECT_FALSE(folder.has("results.nc.part"));
}

TEST_F(Results, WithoutASnapshotLeaveTheEarlierOnesAndNoPart) {
  folder.write("results.nc", "earlier");
  {
    ResultsFile file(data, times, contents, mesh());
    begin(file);
    EXPECT_TRUE(folder.has("results.nc.part"));
  }
  EXPECT_EQ(text(), "earlier");
  EXPECT_FALSE(folder.has("results.nc.part"));
}

TEST_F(Results, AreDueAtTheirTimes) {
  ResultsFile file(data, {1.0, 2.0}, contents, mesh());
  begin(file);
  EXPECT_FALSE(file.CheckTime(0.5, 1e-8));
  EXPECT_TRUE(file.CheckTime(1.0 - 1e-9, 1e-8));
  file.WriteMeasure(flow);
  EXPECT_FALSE(file.CheckTime(1.5, 1e-8));
  file.WriteMeasure(flow);
  EXPECT_FALSE(file.CheckTime(9.0, 1e-8));
}

TEST_F(Results, GoOnWithTheSameBytesBehindTheSnapshotsOfThePosition) {
  ResultsPosition position;
  {
    ResultsFile whole(data, times, contents, mesh());
    begin(whole);
    write_some(whole, 2);
    whole.wait();
    position = whole.position();
    cell(0).U.set_values(4.0, 6.0, 8.0);
    whole.WriteMeasure(flow);
    cell(0).U.set_values(5.0, 6.0, 8.0);
    whole.WriteMeasure(flow);
    whole.finish(flow);
    whole.wait();
  }
  const std::string expected = text();
  EXPECT_EQ(position.records, 2U);
  EXPECT_EQ(position.snapshots.next, 2U);
  EXPECT_EQ(position.written.count, 2U);

  ResultsFile next(data, times, contents, mesh());
  next.require(position);
  next.go_on(position, 1.0);
  EXPECT_EQ(snapshots(), 2);
  EXPECT_LT(text().size(), expected.size());
  EXPECT_EQ(next.position().written.checksum, position.written.checksum);
  cell(0).U.set_values(4.0, 6.0, 8.0);
  next.WriteMeasure(flow);
  cell(0).U.set_values(5.0, 6.0, 8.0);
  next.WriteMeasure(flow);
  next.finish(flow);
  next.wait();
  EXPECT_EQ(text(), expected);
}

TEST_F(Results, OfAnotherListOfTimesGoOnBehindWhatIsDone) {
  const ResultsPosition position = position_behind(2);
  ResultsFile next(data, {0.5, 1.5, 1.75}, contents, mesh());
  next.go_on(position, 1.6);
  EXPECT_FALSE(next.CheckTime(1.7, 0.0));
  EXPECT_TRUE(next.CheckTime(1.75, 0.0));
}

TEST_F(Results, DoNotGoOnInAFileThatIsAnotherOne) {
  const ResultsPosition position = position_behind(2);
  const std::string whole = text();
  const auto refusal = [&] {
    const ResultsFile next(data, times, contents, mesh());
    try {
      next.require(position);
    } catch (const utils::FatalError& error) {
      return error.text();
    }
    return std::string();
  };
  const std::string end = ": it can't be continued.\n";
  const std::string name = "Error. The result file " + folder.file("results.nc") + " ";
  EXPECT_EQ(refusal(), "");
  std::string other = whole;
  other.back() ^= 1;
  folder.write("results.nc", other);
  EXPECT_EQ(refusal(), name + "doesn't hold any more what it held at the checkpoint" + end);
  folder.write("results.nc", whole.substr(0, whole.size() - 1));
  EXPECT_EQ(refusal(), name + "has " + std::to_string(whole.size() - 1) + " bytes of the " +
                           std::to_string(whole.size()) + " that it had at the checkpoint" + end);
  folder.write("results.nc", "CDF");
  EXPECT_TRUE(support::contains(refusal(), "describes other results than this run's"));
  other = whole;
  other[7] = 1;
  folder.write("results.nc", other);
  EXPECT_EQ(refusal(), name + "has 1 snapshots of the 2 that it had at the checkpoint" + end);
  std::filesystem::remove(folder.file("results.nc"));
  EXPECT_EQ(refusal(), name + "isn't there any more" + end);
  folder.write("results.nc", whole);
  data.simulation_name = "another";
  EXPECT_TRUE(support::contains(refusal(), "describes other results than this run's"));
}

}  // namespace
