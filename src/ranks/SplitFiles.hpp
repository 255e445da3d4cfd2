// The files of a case read by ranks, each of which takes a piece of every file.
#pragma once

#include <string>
#include <vector>

#include "case/CaseFiles.hpp"
#include "case/Diagnostics.hpp"
#include "case/text_pieces.hpp"
#include "ranks/CaseBlocks.hpp"
#include "ranks/FirstRefusal.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// All ranks make the same calls. What ends one of them ends all, by the message that whole reading
/// ends with.
class SplitFiles final : public cases::CaseFiles {
 public:
  /// Rank 0 tells the diagnostics what all have found.
  SplitFiles(Group& group, cases::Diagnostics& diagnostics, CaseBlocks& blocks)
      : group_(group), diagnostics_(diagnostics), blocks_(blocks) {}

  void together(const std::function<void()>& step) override { do_together(group_, step); }

  Number read_nodes(const std::string& name) override;
  Number read_cells(const std::string& name) override;
  Number read_edges(const std::string& name, int scheme) override;
  void read_cell_file(const cases::CellFile& described, const std::string& name) override;
  void read_terms(const std::string& name, const std::vector<int>& ids,
                  std::vector<int> cases::CellFields::*column) override;
  bool has_sediment() override;

 private:
  /// Keeps the first cell of a piece whose nodes are too far away to compute with.
  void check_geometry(const std::string& name, const cases::PieceOfRecords& piece,
                      FirstRefusal& refusal) const;
  /// Of the nodes that the cells here name.
  void take_corners();
  void sum_up_area_loss();

  Group& group_;
  cases::Diagnostics& diagnostics_;
  CaseBlocks& blocks_;
};

}  // namespace ranks
