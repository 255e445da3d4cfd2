// What the tests of outputs share: a folder for the results, two cells to look at, and the loop's
// side of a recording.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "model/SWE.hpp"
#include "support/RectangleMesh.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"

class OutputTest : public testing::Test {
 protected:
  OutputTest() : model(support::build_rectangle({.nx = 1, .ny = 1, .width = 1.0, .height = 1.0})) {
    Globals::g_outputPath = folder.path() + "/";
    Globals::t = 0.0;
  }
  ~OutputTest() override {
    Handoff::join_all();
    Globals::g_outputPath.clear();
    Globals::t = 0.0;
    Thread::has_failed = false;
  }

  /// Records, and waits until the line is written.
  template <class Output>
  static void record(Output& output) {
    output.WriteMeasure();
    Handoff::wait_for_copies();
    Handoff::join_all();
  }

  ComputationalCell& cell(std::size_t i) { return *model->cells[i]; }

  support::TemporaryFolder folder;
  std::unique_ptr<SWE> model;  ///< the unit square, cut into a lower and an upper triangle
};
