#include "cases/CaseTest.hpp"

namespace {

using Log = CaseTest;

const std::string banner = R"(=================================================
Welcome to Quillmere !
=================================================
Originally created by:
(author)
Contributors:
    (contributor)
    (contributor)
    (contributor)
    (contributor)
    (contributor)
    (contributor)
    (contributor)
=================================================
)";

TEST_F(Log, OfARunWithoutOptionsSaysWhatIsNotThere) {
  run_well();
  EXPECT_EQ(essence_of_log(folder.read("log.txt")),
            banner + R"(Name of the simulation:
Still water
=================================================
Generic parameters of the run: )"
                     "\n"
                     "  Start time: 0 s\t\n  End time: 1 s\t\n"
                     R"(  Courant-Friedrichs-Lewy (CFL) number: 0.5
=================================================
Parameters of the computational method: )"
                     "\n"
                     R"(  Shallow-water equations - hydrodynamic
=================================================
Reading of input files to set-up the model geometry:
  Reading nodes in: nodes.txt
    Number of nodes created: 20
  Reading cells in: cells.txt
   Number of cells created: 24
  Reading interfaces in: edges.txt
   Number of interfaces created: 43
=================================================
Setting bed level, friction, initial conditions and model parameters
  Hydrodynamic initial conditions read from: initial.txt
=================================================
Setting source terms
=================================================
Output parameters:
  Maximum values will be recorded every: 0.25 s
  Gauges: No gauges
  Pictures of the hydraulic state: No pictures
  Section where to measure the discharge: No section to monitor
=================================================
Other parameters:
  Largest initial water depth (h0): 1
  Minimal characteristic length in a cell (min dx): 0.292893
  ZERO depth: 0.0001
=================================================
Total execution time: (some) sec. for 1 sec. of simulation.
)");
}

TEST_F(Log, OfARunWithEverythingNamesEveryFile) {
  c = support::full_case();
  run_well();
  EXPECT_EQ(essence_of_log(folder.read("log.txt")),
            banner + R"(Name of the simulation:
River with everything
=================================================
Generic parameters of the run: )"
                     "\n"
                     "  Start time: 0 s\t\n  End time: 2.5 s\t\n"
                     R"(  Courant-Friedrichs-Lewy (CFL) number: 0.5
=================================================
Parameters of the computational method: )"
                     "\n"
                     R"(  Shallow-water equations - hydrodynamic
=================================================
Reading of input files to set-up the model geometry:
  Reading nodes in: nodes.txt
    Number of nodes created: 20
  Reading cells in: cells.txt
   Number of cells created: 24
  Reading interfaces in: edges.txt
   Number of interfaces created: 43
=================================================
Setting bed level, friction, initial conditions and model parameters
  Fixed bed level (zbr) set from: bed.txt
  Friction parameters set from: friction.txt
  Hydrodynamic initial conditions read from: initial.txt
=================================================
Setting source terms
  Hyetograms set from: rain.txt
  Hyetocells set from: hyetocells.txt
  Infiltration set from: soils.txt
  Infiltracells set from: infiltracells.txt
  Initial infiltration set from: infiltrated.txt
=================================================
Output parameters:
  Maximum values will be recorded every: 0.25 s
  Gauges: positions read in gauges_in.txt
)"
                     " Gauge results written in gauges.txt \n"
                     R"(  Pictures of the hydraulic state: times read in snapshots_in.txt
  Section where to measure the discharge: sections read in sections_in.txt
=================================================
Other parameters:
  Largest initial water depth (h0): 0.946667
  Minimal characteristic length in a cell (min dx): 0.292893
  ZERO depth: 0.001
=================================================
Total execution time: (some) sec. for 2 sec. of simulation.
)");
}

TEST_F(Log, WritesNumbersWithSixSignificantDigits) {
  c.set_times(1234567.5, 1234567.5);
  c.data["CFL"] = 0.123456789;
  c.data["output"]["time step enveloppe of results"] = 1e-5;
  c.data["model"]["zero depth value"] = 1.0 / 30.0;
  run_with_warning("computes nothing");
  const std::string log = folder.read("log.txt");
  EXPECT_TRUE(support::contains(log, "  Start time: 1.23457e+06 s\t\n"));
  EXPECT_TRUE(support::contains(log, "(CFL) number: 0.123457\n"));
  EXPECT_TRUE(support::contains(log, "recorded every: 1e-05 s\n"));
  EXPECT_TRUE(support::contains(log, "  ZERO depth: 0.0333333\n"));
}

TEST_F(Log, ReportsNoTimeForARunThatEndsWhereItStarts) {
  c.set_times(5.0, 5.0);
  run_with_warning("computes nothing");
  EXPECT_TRUE(support::contains(folder.read("log.txt"), " sec. for 0 sec. of simulation.\n"));
}

TEST_F(Log, CutsTheSimulatedTimeOffAtWholeSeconds) {
  c.set_times(100.25, 113.15);  // one step more than 12.9 s, and far less than 13 s
  record_passes();
  run_well();
  const double span = pass_times().back() - 100.25 + step_at_rest();
  ASSERT_GT(span, 12.8);
  ASSERT_LT(span, 13.0);
  EXPECT_TRUE(support::contains(folder.read("log.txt"), " sec. for 12 sec. of simulation.\n"));
}

TEST_F(Log, IsReadableUpToTheErrorThatEndsTheRun) {
  c.files["initial.txt"] = "1 0 0\n";
  EXPECT_EQ(run().status, 255);
  const std::string log = folder.read("log.txt");
  const std::string end = "Setting bed level, friction, initial conditions and model parameters\n";
  EXPECT_EQ(log.substr(log.size() - end.size()), end);
}

}  // namespace
