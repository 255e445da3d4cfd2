#include "output/MaximaFile.hpp"

#include "output/OutputTest.hpp"

namespace {

class MaximaFileTest : public OutputTest {
 protected:
  std::string text_at(fields::Flow& flow, double t) {
    const cases::Case contents = support::case_of(*model);
    MaximaFile file(folder.file("maxima.txt"), contents.mesh);
    file.WriteMeasure(flow, t);
    file.wait();
    EXPECT_FALSE(file.has_failed());
    return folder.read("maxima.txt");
  }
};

TEST_F(MaximaFileTest, ShowsWhatHasBeenAndLeavesOpenWhatHasNot) {
  fields::ObjectsFlow of_model(*model);
  of_model.keep_maxima(0.5);
  cell(0).set_bed_rock_level(7.0);
  cell(0).U.set_values(2.0, 6.0, 8.0);
  of_model.note_maxima(10.0);
  cell(0).U.set_values(0.25, 0.0, 2.0);
  of_model.note_maxima(12.5);
  cell(0).U.set_values(1.0, 0.0, 2.0);
  EXPECT_EQ(text_at(of_model, 20.0),
            "x\ty\tzb\th_max\tlevel_max\tv_max\tq_max\thv_max\tt_h_max\tt_arrival\tt_wet\n"
            "0.666667\t0.333333\t7\t2\t9\t8\t10\t10\t10\t10\t2.5\n"
            "0.333333\t0.666667\t0\t0\tnan\t0\t0\t0\tnan\tnan\t0\n");
  EXPECT_EQ(support::split(support::lines(text_at(of_model, 21.0)).at(1), '\t').back(), "3.5");
}

}  // namespace
