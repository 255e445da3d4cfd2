// The morphodynamic model: shallow-water equations over an erodible bed (Exner equation, bed load).
#pragma once

#include "model/PhysicalModel.hpp"

class SWE_Exner : public PhysicalModel {
 public:
  void build_cell(int id, const std::vector<const MeshNode*>& nodes) override;
  void setSedimentsParam(utils::TextScanner& file) override;
  void setSedimentsLevel(utils::TextScanner& file) override;
  void build_interface(int scheme, int edge, int left, int right, const MeshNode& node1,
                       const MeshNode& node2, int bc, double value,
                       const std::string& file) override;
  void computeFiniteVolumeBalance() override;
  double computeFlowStep() override;
  void printPicture(const std::string& name) override;
};
