// What a run was told, as a list of checksums with names, so that one that goes on from a
// checkpoint knows what has changed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/input_sums.hpp"

namespace checkpoint {

struct Input {
  std::string name;  ///< for messages
  std::uint64_t checksum = 0;
  bool may_change = false;  ///< between a run and the one that goes on from it

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.name, self.checksum, self.may_change);
  }
};

/// All that the steps of a run depend on: its case, of whose mesh and cells nothing but the sums is
/// looked at, and the version of the program.
std::vector<Input> inputs_of(const cases::Case& contents, const cases::InputSums& sums,
                             const std::string& version);

/// Names of what is not the same in two lists.
struct Changes {
  std::vector<std::string> allowed, refused;
};
Changes changes_between(const std::vector<Input>& before, const std::vector<Input>& now);

/// A hyetogram, by which its rain clock is found again.
struct RainInput {
  int id = 0;
  std::uint64_t checksum = 0;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.id, self.checksum);
  }
};
std::vector<RainInput> rain_of(const cases::Case& contents);

/// The clocks of the hyetograms of a case at time t (s), of those of the checkpoint: a hyetogram of
/// the same ID goes on from its last burst, by other intensities if they have changed; a new one
/// begins at t.
std::vector<physics::RainClock> rain_clocks_for(const cases::Case& contents, double t,
                                                const std::vector<RainInput>& before,
                                                const std::vector<physics::RainClock>& clocks);

}  // namespace checkpoint
