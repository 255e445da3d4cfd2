// A case that ranks have read together, as rank 0 has it: all of it but what grows with the mesh,
// of which every rank has its share until a flow is made of these.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "fields/ListedMesh.hpp"
#include "fields/PartGround.hpp"
#include "ranks/read_share.hpp"

namespace fields {

class SharedCase {
 public:
  /// On rank 0, while the others serve: all of them read. Ends as cases::read_case() does. The
  /// group must outlive it.
  SharedCase(ranks::Group& group, const std::string& data_file, const cases::Listeners& listeners,
             cases::Diagnostics& diagnostics);

  /// Without mesh and fields; once.
  cases::ReadCase take_case() { return std::move(case_); }
  const MeshCounts& counts() const { return read_.counts; }
  const cases::InputSums& input_sums() const { return read_.input_sums; }
  const cases::ImplausibleFields& implausible() const { return read_.implausible; }
  /// Until a flow is made; it must not outlive this.
  std::unique_ptr<Ground> ground() const;
  /// Where the case asks for results that list it: one rank after the other brings its rows here,
  /// once, until a flow is made. It must not outlive this.
  std::unique_ptr<ListedMesh> listed_mesh();
  /// That of rank 0; once, for the flow.
  ranks::Share take_share();

 private:
  ranks::Group& group_;
  ranks::ReadShare read_;
  cases::ReadCase case_;
};

/// On the other ranks, when they are called to it: what they read; none where the case was refused.
std::optional<ranks::ReadShare> read_own_share(ranks::Group& group);

/// On all ranks of a flow: throws what cases::sides_for_hll() would say of the triangles of the
/// whole case, if its scheme asks for any.
void require_scheme_takes(ranks::Group& group, const cases::Part& part);

}  // namespace fields
