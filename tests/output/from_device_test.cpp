// What gauges and sections bring home from a device when they record.
#include <gtest/gtest.h>

#include <sstream>

#include "engine/device/Emulator.hpp"
#include "fields/TablesFlow.hpp"
#include "output/CMonitorSection.hpp"
#include "output/Gauge.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/Told.hpp"
#include "support/basin.hpp"

namespace {

using engine::device::EmulatedTraffic;

class RecordsFromADevice : public testing::Test {
 protected:
  /// A few steps, at whose end nobody has looked at the states.
  std::unique_ptr<fields::TablesFlow> stepped_flow(const engine::Processor& processor) {
    auto flow = std::make_unique<fields::TablesFlow>(case_, told_, 1, 64, processor);
    for (int step = 0; step < 5; ++step) flow->advance({0.01 * step, 0.0, 5.0, 0.01});
    return flow;
  }

  struct Recorded {
    std::size_t bytes;
    std::string text;
  };
  /// What record(flow) brings home, and leaves in the file of results.
  template <class Record>
  Recorded record_on(engine::Device device, const Record& record) {
    const auto flow = stepped_flow({.device = device});
    const std::size_t before = EmulatedTraffic::bytes;
    record(*flow);
    return {EmulatedTraffic::bytes - before, folder_.read("result.txt")};
  }
  template <class Record>
  void expect_columns_of_cells(std::size_t columns, std::size_t cells, const Record& record) {
    const Recorded here = record_on(engine::Device::none, record);
    const Recorded there = record_on(engine::Device::emulated, record);
    EXPECT_EQ(there.text, here.text);
    EXPECT_EQ(here.bytes, 0U);
    EXPECT_EQ(there.bytes, columns * cells * (sizeof(double) + sizeof(int)));  // and their places
  }

  const support::TemporaryFolder folder_;
  const cases::Case case_ = support::basin({}, folder_);
  const fields::WholeGround ground_{case_};
  support::Told told_;
};

}  // namespace

TEST_F(RecordsFromADevice, AreTheDepthsAndDischargesOfTheCellsOfGauges) {
  std::vector<physics::PlanPoint> points;
  for (const cases::Number cell : {3, 90, 400, 700}) {
    const physics::SpacePoint center = case_.mesh.center_of(cell);
    points.push_back({center.x + 0.01, center.y + 0.003});
  }
  expect_columns_of_cells(3, points.size(), [&](const fields::Flow& flow) {
    std::ostringstream log;
    Gauge gauge({"result.txt", 1.0, points}, folder_.path() + "/", ground_, 0.0);
    gauge.begin(log);
    gauge.WriteMeasure(flow);
    gauge.wait();
  });
}

TEST_F(RecordsFromADevice, AreTheDischargesOfTheCellsOfSections) {
  const std::vector<std::vector<cases::Number>> sections = {{10, 20, 30}, {100, 200}};
  expect_columns_of_cells(2, 5, [&](const fields::Flow& flow) {
    CMonitorSection section({folder_.file("result.txt"), 1.0, sections}, ground_, 0.0);
    section.begin();
    section.WriteMeasure(flow, 0.05);
    section.wait();
  });
}
