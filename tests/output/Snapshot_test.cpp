#include "output/Snapshot.hpp"

#include "model/SWE_Exner.hpp"
#include "output/OutputTest.hpp"

namespace {

class SnapshotTest : public OutputTest {
 protected:
  std::string snapshot_of(PhysicalModel& of) {
    const fields::ObjectsFlow flow_of(of);
    const cases::Case case_of = support::case_of(of);
    Snapshot snapshot(case_of);
    snapshot.gather(flow_of);
    EXPECT_TRUE(snapshot.write(folder.file("snapshot.txt")));
    return folder.read("snapshot.txt");
  }
  /// The same table, from the model itself.
  std::string picture_of(PhysicalModel& of) {
    of.printPicture(folder.file("picture.txt"));
    return folder.read("picture.txt");
  }
};

TEST_F(SnapshotTest, ShowsTheMeanOfTheVerticesAsTheBedOfTheFlow) {
  cell(0).set_bed_rock_level(7.0);
  cell(0).U.set_values(1.0, 2.0, 3.0);
  EXPECT_EQ(snapshot_of(*model),
            "x\ty\tzb\th\tqx\tqy\n"
            "0.666667\t0.333333\t0\t1\t2\t3\n"
            "0.333333\t0.666667\t0\t0\t0\t0\n");
  EXPECT_EQ(picture_of(*model), snapshot_of(*model));
}

TEST_F(SnapshotTest, ShowsWhatHasInfiltrated) {
  model->has_infiltration = true;
  cell(1).param.infiltrated_depth = 0.25;
  EXPECT_EQ(snapshot_of(*model),
            "x\ty\tzb\th\tqx\tqy\tf\n"
            "0.666667\t0.333333\t0\t0\t0\t0\t0\n"
            "0.333333\t0.666667\t0\t0\t0\t0\t0.25\n");
  EXPECT_EQ(picture_of(*model), snapshot_of(*model));
}

TEST_F(SnapshotTest, ShowsTheBedWithItsSedimentsAndNoInfiltration) {
  const auto sand = support::build_rectangle<SWE_Exner>({1, 1, 1.0, 1.0});
  sand->has_infiltration = true;
  sand->cells[0]->set_bed_rock_level(7.0);
  sand->cells[0]->set_hs(0.5);
  sand->cells[0]->U.set_values(1.0, 2.0, 3.0, 0.5, 5.0, 6.0);
  EXPECT_EQ(snapshot_of(*sand),
            "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy\n"
            "0.666667\t0.333333\t7.5\t1\t2\t3\t0.5\t5\t6\n"
            "0.333333\t0.666667\t0\t0\t0\t0\t0\t0\t0\n");
  EXPECT_EQ(picture_of(*sand), snapshot_of(*sand));
}

TEST_F(SnapshotTest, KeepsTheMillimetresOfProjectedCoordinatesWithTheLevelOfTheirBed) {
  const auto far =
      support::build_rectangle({1, 1, 3000.0, 3000.0}, [](double, double) { return 1.0 / 3.0; });
  far->cells[0]->U.set_values(1.0 / 3.0, 0.0, 0.0);
  EXPECT_EQ(snapshot_of(*far),
            "x\ty\tzb\th\tqx\tqy\n"
            "2000.000\t1000.000\t0.333\t0.333333\t0\t0\n"
            "1000.000\t2000.000\t0.333\t0\t0\t0\n");
  const auto far_sand = support::build_rectangle<SWE_Exner>(
      {1, 1, 3000.0, 3000.0}, [](double, double) { return 1.0 / 3.0; });
  EXPECT_NE(snapshot_of(*far_sand).find("2000.000\t1000.000\t0.333333\t0\t"), std::string::npos);
  EXPECT_EQ(picture_of(*far_sand), snapshot_of(*far_sand));
}

TEST_F(SnapshotTest, StaysAsItWasGathered) {
  Snapshot snapshot(contents);
  cell(0).U.h = 1.5;
  snapshot.gather(flow);
  cell(0).U.h = 99.0;
  snapshot.write(folder.file("snapshot.txt"));
  EXPECT_NE(folder.read("snapshot.txt").find("\t1.5\t0\t0\n"), std::string::npos);
  EXPECT_EQ(folder.read("snapshot.txt").find("99"), std::string::npos);
}

}  // namespace
