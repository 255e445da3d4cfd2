#include "output/CPicture.hpp"

#include <set>

#include "utils/snapshot_name.hpp"
#include "utils/stop.hpp"

namespace {

/// Warnings about snapshots that will not be what their names say.
class SnapshotWarnings {
 public:
  /// The snapshot (counted from 0), and its file name.
  void check(std::size_t snapshot, const std::vector<double>& times, const std::string& name) {
    const std::string who = "snapshot " + std::to_string(snapshot) + " (counted from 0), " + name;
    if (snapshot > 0 && times[snapshot] < times[snapshot - 1]) {
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

CPicture::CPicture(const cases::SnapshotRequest& request, const std::string& prefix,
                   const cases::Case& contents)
    : times_(request.times), snapshot_(contents) {
  SnapshotWarnings warnings;
  for (std::size_t i = 0; i < times_.size(); ++i) {
    names_.push_back(prefix + utils::snapshot_name(times_[i]));
    warnings.check(i, times_, names_.back());
  }
}

void CPicture::go_on(const SnapshotPosition& position, double done) {
  next_ = next_snapshot(times_, position, done);
}

void CPicture::WriteMeasure(const fields::Flow& flow) {
  writer_.wait();
  snapshot_.gather(flow);
  snapshot_.hand_over(writer_, names_[next_++]);
}
