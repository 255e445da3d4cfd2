#include "ranks/read_share.hpp"

#include <ostream>
#include <utility>

#include "ranks/SplitFiles.hpp"
#include "ranks/cut_blocks.hpp"
#include "ranks/share_of_blocks.hpp"
#include "utils/stop.hpp"

namespace ranks {

namespace {

/// Of ranks whose warnings rank 0 gives, too.
class WithoutWarnings final : public cases::Diagnostics {
 public:
  void error(const std::string& message) override { utils::fatal(message); }
  void warn(const std::string&) override {}
};

CaseBlocks read_blocks(Group& group, const std::string& data_file,
                       const cases::Listeners& listeners, cases::Diagnostics& diagnostics,
                       cases::DataFile& data) {
  CaseBlocks blocks;
  SplitFiles files(group, diagnostics, blocks);
  cases::read_case(data_file, files, listeners, diagnostics, blocks.contents, data);
  return blocks;
}

}  // namespace

ReadShare read_share(Group& group, const std::string& data_file, const cases::Listeners& listeners,
                     cases::Diagnostics& diagnostics) {
  ReadShare read;
  CaseBlocks blocks;
  if (group.rank() == 0) {
    blocks = read_blocks(group, data_file, listeners, diagnostics, read.data);
  } else {
    std::ostream nowhere(nullptr);
    utils::Console console(nowhere);
    console.mute();
    WithoutWarnings silent;
    blocks = read_blocks(group, data_file, {nowhere, console}, silent, read.data);
  }
  read.area_loss = blocks.area_loss;
  read.cells = blocks.cells;
  read.owners = owners_along_curve(group, blocks);
  const int rings = cases::rings_of(blocks.contents.scheme);
  read.share = share_of_blocks(group, std::move(blocks), read.owners, rings);
  return read;
}

}  // namespace ranks
