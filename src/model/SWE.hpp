// The hydrodynamic model: shallow-water equations over a fixed bed.
#pragma once

#include "model/PhysicalModel.hpp"

class SWE : public PhysicalModel {
 public:
  void build_cell(int id, const std::vector<const MeshNode*>& nodes) override;
  void build_interface(int scheme, int edge, int left, int right, const MeshNode& node1,
                       const MeshNode& node2, int bc, double value,
                       const std::string& file) override;
  void computeFiniteVolumeBalance() override;
  double computeFlowStep() override;
  void printPicture(const std::string& name) override;
};
