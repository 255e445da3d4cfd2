#include "sources/SourceTerm.hpp"

#include <gtest/gtest.h>

#include "sources/FrictionTerm.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"

namespace {

class NoTerm : public SourceTerm {
 public:
  using SourceTerm::SourceTerm;
  void compute_source_term(double, HydraulicVariableSWE&, HydraulicVariableSWE&,
                           ParamCell&) override {}
};

TEST(SourceTerm, HasNeitherIdNorStepOfItsOwn) {
  EXPECT_EQ(NoTerm().getID(), -1);
  EXPECT_EQ(NoTerm().get_dts(), -1.0);
  EXPECT_EQ(FrictionTerm().getID(), -1);
  EXPECT_EQ(RainTerm().getID(), -1);
  EXPECT_EQ(GreenAmptTerm().getID(), -1);
  EXPECT_EQ(HortonTerm().getID(), -1);
}

TEST(SourceTerm, TakesItsIdAndItsStepInWholeSeconds) {
  EXPECT_EQ(NoTerm(7).getID(), 7);
  EXPECT_EQ(NoTerm(7).get_dts(), -1.0);
  EXPECT_EQ(NoTerm(7, 300).getID(), 7);
  EXPECT_EQ(NoTerm(7, 300).get_dts(), 300.0);
}

TEST(SourceTerm, ChangesItsId) {
  NoTerm term(7);
  term.setID(8);
  EXPECT_EQ(term.getID(), 8);
}

}  // namespace
