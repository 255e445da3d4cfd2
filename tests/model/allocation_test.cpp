// A step allocates nothing, and a model gives back all that it took: counted in this program's own
// allocation functions.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TablesOfModel.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/flow.hpp"

namespace {

std::atomic<long> allocations = 0;
std::atomic<long> deallocations = 0;

void* counted_allocation(std::size_t size) {
  ++allocations;
  void* const block = std::malloc(size > 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void counted_deallocation(void* block) noexcept {
  if (block != nullptr) ++deallocations;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return counted_allocation(size); }
void* operator new[](std::size_t size) { return counted_allocation(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return counted_allocation(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<std::size_t>(alignment);
  ++allocations;
  void* const block = std::aligned_alloc(unit, (size + unit) / unit * unit);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block, std::align_val_t) noexcept { counted_deallocation(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
  counted_deallocation(block);
}
void operator delete(void* block) noexcept { counted_deallocation(block); }
void operator delete[](void* block) noexcept { counted_deallocation(block); }
void operator delete(void* block, std::size_t) noexcept { counted_deallocation(block); }
void operator delete[](void* block, std::size_t) noexcept { counted_deallocation(block); }

namespace {

/// A sloping basin of 288 triangles with friction, rain and both kinds of infiltration.
class AllocationTest : public testing::Test {
 protected:
  AllocationTest() {
    rain.times = {0.0, 0.5, 1.0};
    rain.intensities = {1e-4, 2e-4, 5e-5};
  }

  std::unique_ptr<SWE> build(const support::Side& west, const support::Side& east,
                             const support::Side& south, const support::Side& north) {
    auto model = support::build_rectangle({12, 12, 12.0, 12.0, west, east, south, north},
                                          [](double x, double) { return 0.1 * x; });
    support::fill(*model, [](double, double y) { return 0.8 + 0.01 * y; });
    add_friction(*model);
    for (std::size_t i = 0; i < model->cells.size(); ++i) {
      SourceTerm* const soil = i % 2 == 0 ? static_cast<SourceTerm*>(&loam) : &field;
      model->cells[i]->add_source_term(&rain);
      model->cells[i]->add_source_term(soil);
    }
    return model;
  }

  void add_friction(SWE& model) {
    std::string coefficients;
    for (std::size_t i = 0; i < model.cells.size(); ++i) coefficients += "0.03 ";
    utils::TextScanner file(folder.write("friction.txt", coefficients));
    model.setFriction(file);
  }

  support::RunGlobals globals{1e-4};
  support::TemporaryFolder folder;
  RainTerm rain{1, 3, 0};
  GreenAmptTerm loam{1, 1e-5, 0.1, 0.2, 0.4, 1.0, 1e-4};
  HortonTerm field{2, 5e-5, 1e-5, 100.0, 0.05, 1e-4};
};

/// Allocations of 50 steps, after 5 that may settle what they need.
long allocations_of_steps(SWE& model) {
  support::advance(model, 5, 0.9);
  const long before = allocations;
  support::advance(model, 50, 0.9);
  return allocations - before;
}

TEST(CountedAllocations, SeeAVectorComeAndGo) {
  const long taken = allocations;
  const long given = deallocations;
  { std::vector<double> numbers(100, 1.0); }
  EXPECT_EQ(allocations - taken, 1);
  EXPECT_EQ(deallocations - given, 1);
}

TEST_F(AllocationTest, AStepWithTimeSeriesAllocatesNothing) {
  const support::Side hydrograph{edge_code::hydrograph, 0.0,
                                 folder.write("q.txt", "3 0 -0.1 1 -0.3 1e6 -0.2")};
  const support::Side limnigraph{edge_code::limnigraph, 0.0,
                                 folder.write("z.txt", "3 0 1.3 1 1.5 1e6 1.4")};
  const auto model = build(hydrograph, limnigraph, {edge_code::wall}, {edge_code::transmissive});
  EXPECT_EQ(allocations_of_steps(*model), 0);
  EXPECT_GT(Globals::t, 1.0);  // past the second sample and the second interval of the rain
}

TEST_F(AllocationTest, AStepWithImposedValuesAllocatesNothing) {
  const auto model = build({edge_code::discharge, -0.2}, {edge_code::water_level, 1.4},
                           {edge_code::wall}, {edge_code::transmissive});
  EXPECT_EQ(allocations_of_steps(*model), 0);
}

TEST_F(AllocationTest, AStepOnTheTablesAllocatesNothing) {
  const support::Side hydrograph{edge_code::hydrograph, 0.0,
                                 folder.write("q.txt", "3 0 -0.1 1 -0.3 1e6 -0.2")};
  const auto model = build(hydrograph, {edge_code::water_level, 1.4}, {edge_code::wall},
                           {edge_code::transmissive});
  support::TablesOfModel tables(*model, 3);
  fields::Flow* const flow = &tables.flow;
  for (int i = 0; i < 5; ++i) flow->advance(support::step_times(0.01));
  const long before = allocations;
  for (int i = 0; i < 50; ++i) {
    Globals::t += 0.01;
    flow->advance(support::step_times(0.01));
  }
  EXPECT_EQ(allocations - before, 0);
}

TEST_F(AllocationTest, AModelGivesBackAllThatItTook) {
  build({}, {}, {}, {});  // the names of input files are remembered for good
  const long in_use = allocations - deallocations;
  {
    const auto model = build({}, {}, {}, {});
    EXPECT_GT(allocations - deallocations, in_use + 288);
    support::advance(*model, 2, 0.9);
  }
  EXPECT_EQ(allocations - deallocations, in_use);
}

}  // namespace
