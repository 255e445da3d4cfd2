// What the tests of outputs share: a folder for the results, and two cells to look at.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "fields/ObjectsFlow.hpp"
#include "model/SWE.hpp"
#include "support/RectangleMesh.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/case_of.hpp"
#include "support/text.hpp"

class OutputTest : public testing::Test {
 protected:
  /// Files of results begin with it.
  std::string prefix() const { return folder.path() + "/"; }

  ComputationalCell& cell(std::size_t i) { return *model->cells[i]; }

  support::TemporaryFolder folder;
  /// The unit square, cut into a lower and an upper triangle.
  std::unique_ptr<SWE> model = support::build_rectangle({1, 1, 1.0, 1.0});
  fields::ObjectsFlow flow{*model};
  cases::Case contents = support::case_of(*model);
};
