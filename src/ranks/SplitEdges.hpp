// The edges of a case read by ranks, each of which takes a piece of their file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "case/Diagnostics.hpp"
#include "case/EdgeWarnings.hpp"
#include "case/text_pieces.hpp"
#include "ranks/CaseBlocks.hpp"
#include "ranks/FirstRefusal.hpp"
#include "ranks/NumberSet.hpp"

namespace ranks {

/// What ranks remark, of which whole reading would tell the first of each kind and count the rest.
struct Remarks {
  std::vector<cases::EdgeRemark> first;  ///< in the order of the file
  std::array<std::int64_t, cases::EdgeRemark::kinds> counts{};

  void add(cases::EdgeRemark remark);

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.first, self.counts);
  }
};

class SplitEdges {
 public:
  SplitEdges(Group& group, cases::Diagnostics& diagnostics, CaseBlocks& blocks)
      : group_(group), diagnostics_(diagnostics), blocks_(blocks) {}

  /// Needs the cells; answers how many edges there are. Called by all ranks, once.
  Number read(const std::string& name, int scheme);

 private:
  /// The file of a time series and the first edge here that names it.
  struct NamedSeries {
    std::string file;
    Number edge;

    template <class Self, class Visit>
    static void visit_parts(Self& self, const Visit& visit) {
      visit(self.file, self.edge);
    }
  };

  void read_records(const std::string& name, int scheme);
  /// Rank 0 reads the series of all, in the order in which the edges name them.
  void read_series();
  void take_corners();
  physics::PlanPoint corner(Number node) const;
  void check_geometry(const std::string& name);
  /// Of the edges before the first that any rank refuses.
  void remark_on_edges(std::int64_t refused);
  void remark_on_cells();
  /// Rank 0 tells the remarks of all.
  void tell_remarks();

  Group& group_;
  cases::Diagnostics& diagnostics_;
  CaseBlocks& blocks_;
  cases::PieceOfRecords piece_{};
  FirstRefusal refusal_;
  std::vector<NamedSeries> series_;  ///< numbered in the order of this rank
  NumberSet nodes_;                  ///< at the ends of the edges
  Corners corners_;                  ///< of these
  Remarks remarks_;
};

}  // namespace ranks
