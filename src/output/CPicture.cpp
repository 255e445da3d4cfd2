#include "output/CPicture.hpp"

#include <set>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "utils/TextScanner.hpp"
#include "utils/snapshot_name.hpp"
#include "utils/stop.hpp"

namespace {

/// Warnings about snapshots that will not be what their names say.
class SnapshotWarnings {
 public:
  /// The times up to that of the snapshot (counted from 0), and its file name.
  void check(int snapshot, const std::vector<double>& times, const std::string& name) {
    const std::string who = "snapshot " + std::to_string(snapshot) + " (counted from 0), " + name;
    if (times.size() > 1 && times.back() < times[times.size() - 2]) {
      late_.add(who + ", has an earlier time than the one before it: it will show a later flow.");
    }
    if (!names_.insert(name).second) {
      repeated_.add(who + ", replaces an earlier snapshot of the same name.");
    }
  }

 private:
  std::set<std::string> names_;
  utils::RepeatedWarning late_{"snapshots out of order."};
  utils::RepeatedWarning repeated_{"snapshots that replace earlier ones."};
};

}  // namespace

CPicture::CPicture(const std::string& path) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of snapshots", 1);
  SnapshotWarnings warnings;
  for (int i = 0; i < count; ++i) {
    file.begin_record("snapshot", i, count);
    times_.push_back(file.read_number("time"));
    names_.push_back(Globals::g_outputPath + utils::snapshot_name(times_.back()));
    warnings.check(i, times_, names_.back());
  }
}

void CPicture::WriteMeasure(PhysicalModel* model) {
  Handoff::picture.start([model, name = names_[next_++]] { model->printPicture(name); });
}
