#include "model/build_objects.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "case/boundary_kinds.hpp"
#include "case/initial_state.hpp"
#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroFluxLHLLC.hpp"
#include "interfaces/SedFluxCLHLLC.hpp"
#include "model/CellSWE_Exner.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

/// A square of 2 m, cut in two; water flows in from the south.
cases::Case cut_square() {
  cases::Case contents;
  contents.zero_depth = 0.01;
  cases::Mesh& mesh = contents.mesh;
  mesh.x = {0.0, 2.0, 2.0, 0.0};
  mesh.y = {0.0, 0.0, 2.0, 2.0};
  mesh.z = {0.0, 0.0, 3.0, 0.0};
  mesh.add_cell(std::array{0, 1, 2});
  mesh.add_cell(std::array{0, 2, 3});
  mesh.left = {0, 0, 1, 1, 0};
  mesh.right = {-1, -1, -1, -1, 1};
  mesh.node1 = {0, 1, 2, 3, 2};
  mesh.node2 = {1, 2, 3, 0, 0};
  mesh.boundaries = {{0, edge_code::discharge, -0.5, -1},
                     {1, edge_code::wall, 0.0, -1},
                     {2, edge_code::wall, 0.0, -1},
                     {3, edge_code::wall, 0.0, -1}};
  contents.fields.level = {1.5, 2.5};
  contents.fields.qx = {0.25, 0.5};
  contents.fields.qy = {-0.25, -0.5};
  return contents;
}

class BuildObjectsTest : public testing::Test {
 protected:
  support::RunGlobals globals{0.01};
  cases::Case contents = cut_square();
};

TEST_F(BuildObjectsTest, CellsAndInterfacesStandInTheOrderOfTheCase) {
  const ModelObjects objects = build_objects(contents);
  const PhysicalModel& model = *objects.model;
  ASSERT_EQ(model.n_cells, 2);
  ASSERT_EQ(model.n_interfaces, 5);
  EXPECT_EQ(model.n_nodes, 4);
  EXPECT_EQ(model.cells[1]->get_node(2), &model.mesh_nodes[3]);
  const auto* inflow = dynamic_cast<const HydroBCDischarge*>(model.interfaces[0].get());
  ASSERT_NE(inflow, nullptr);
  EXPECT_EQ(inflow->q_imposed, -0.5);
  const GenericInterface& interior = *model.interfaces[4];
  EXPECT_NE(dynamic_cast<const HydroFluxLHLLC*>(&interior), nullptr);
  EXPECT_EQ(interior.cell_left, model.cells[0].get());
  EXPECT_EQ(interior.cell_right, model.cells[1].get());
  EXPECT_EQ(interior.local_index_left, 2u);
}

TEST_F(BuildObjectsTest, TheyStartInTheInitialStateOfTheCase) {
  contents.fields.bed = {1.0, 2.0};
  const ModelObjects objects = build_objects(contents);
  const ComputationalCell& cell = *objects.model->cells[1];
  EXPECT_EQ(cell.bed_level, 2.0);
  EXPECT_EQ(cell.free_surface_level, 2.5);
  EXPECT_EQ(cell.U.h, 0.5);
  EXPECT_EQ(cell.U.qx, 0.5);
  EXPECT_EQ(cell.U.qy, -0.5);
  EXPECT_TRUE(cell.source_terms.empty());
  EXPECT_FALSE(objects.model->has_infiltration);
}

TEST_F(BuildObjectsTest, TheRuleOfTheStepIsThatOfTheCase) {
  const ModelObjects objects = build_objects(contents);
  const double lengths[] = {contents.mesh.geometry_of(0).char_length(),
                            contents.mesh.geometry_of(1).char_length()};
  EXPECT_EQ(objects.model->char_length_min, std::min(lengths[0], lengths[1]));
  EXPECT_EQ(objects.model->h0, 1.5);
}

TEST_F(BuildObjectsTest, TermsAreAttachedInTheOrderFrictionRainSoil) {
  contents.has_infiltration = true;
  contents.fields.manning = {0.03, 0.05};
  contents.rain = {{7, 60, {0.0}, {1e-5}}, {8, 30, {0.0, 10.0}, {2e-5, 0.0}}};
  contents.fields.rain = {1, -1};
  contents.soils = {{1, cases::HortonParameters{2e-5, 1e-6, 4.0, 0.5, 0.0}},
                    {2, cases::GreenAmptParameters{1e-6, 0.1, 0.2, 0.4, 1.0, 0.0}}};
  contents.fields.soil = {1, 0};
  contents.fields.infiltrated = {0.0, 0.125};
  const ModelObjects objects = build_objects(contents);
  const auto& first = objects.model->cells[0]->source_terms;
  ASSERT_EQ(first.size(), 3u);
  EXPECT_EQ(first[0], &objects.model->friction_terms[0]);
  EXPECT_EQ(objects.model->cells[0]->friction, 0.03);
  const auto* rain = dynamic_cast<const RainTerm*>(first[1]);
  ASSERT_NE(rain, nullptr);
  EXPECT_EQ(rain->getID(), 8);
  EXPECT_EQ(rain->get_dts(), 30.0);
  EXPECT_EQ(rain->intensities, (std::vector<double>{2e-5, 0.0}));
  const auto* loam = dynamic_cast<const GreenAmptTerm*>(first[2]);
  ASSERT_NE(loam, nullptr);
  EXPECT_EQ(loam->soil().psi, 0.1);
  EXPECT_DOUBLE_EQ(loam->soil().Fmax, 0.5);
  const auto& second = objects.model->cells[1]->source_terms;
  ASSERT_EQ(second.size(), 2u);
  EXPECT_EQ(dynamic_cast<const HortonTerm&>(*second[1]).soil().k, 4.0);
  EXPECT_EQ(objects.model->cells[1]->param.infiltrated_depth, 0.125);
  EXPECT_TRUE(objects.model->has_infiltration);
}

TEST_F(BuildObjectsTest, WithSedimentsTheModelHasAnErodibleBed) {
  contents.has_sediments = true;
  contents.fields.sediment = {0.5, 0.0};
  const ModelObjects objects = build_objects(contents);
  const ComputationalCell& cell = *objects.model->cells[0];
  EXPECT_NE(dynamic_cast<const CellSWE_Exner*>(&cell), nullptr);
  EXPECT_EQ(cell.U.hs, 0.5);
  EXPECT_EQ(cell.bed_rock_level, 1.0);
  EXPECT_EQ(cell.bed_level, 1.5);
  EXPECT_NE(dynamic_cast<const SedFluxCLHLLC*>(objects.model->interfaces[4].get()), nullptr);
}

TEST_F(BuildObjectsTest, NoFileOfASeriesIsReadAgain) {
  const support::TemporaryFolder folder;
  contents.series = {{folder.file("is_not_there.txt"), {0.0, 10.0}, {1.0, 2.0}}};
  contents.mesh.boundaries[0] = {0, edge_code::hydrograph, 0.0, 0};
  contents.mesh.boundaries[1] = {1, edge_code::hydrograph, 0.0, 0};
  const ModelObjects objects = build_objects(contents);
  const auto* first = dynamic_cast<const HydroBCHydrograph*>(objects.model->interfaces[0].get());
  const auto* second = dynamic_cast<const HydroBCHydrograph*>(objects.model->interfaces[1].get());
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(first->series, second->series);
  EXPECT_EQ(first->series->values, (std::vector<double>{1.0, 2.0}));
}

}  // namespace
