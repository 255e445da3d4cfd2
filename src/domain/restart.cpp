// A run that goes on from a checkpoint: what must be as it was, and what it takes over.
#include <fstream>
#include <stdexcept>
#include <string>

#include "domain/Domain.hpp"
#include "report/RunReport.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

[[noreturn]] void refuse(const std::string& file, const std::string& why) {
  throw std::runtime_error("Error. The run can't go on from the checkpoint " + file + ": " + why +
                           ".");
}

/// Says in the log how an output that records at an interval goes on.
class RecordingChanges {
 public:
  RecordingChanges(std::ostream& log, const char* what) : log_(log), what_(what) {}

  void say(const std::optional<RecordingPosition>& before,
           const std::optional<RecordingPosition>& now) const {
    if (before && !now) tell("are recorded no more");
    if (now && !before) tell("are recorded from here on");
    if (!now || !before) return;
    if (now->lines.name != before->lines.name) tell("are recorded in another file from here on");
    if (now->interval != before->interval) {
      tell("are recorded every " + utils::number_text(now->interval) + " s, no more every " +
           utils::number_text(before->interval) + " s");
    }
  }

 private:
  void tell(const std::string& text) const { log_ << "  " << what_ << " " << text << '\n'; }

  std::ostream& log_;
  const char* what_;
};

/// Whether a recording goes on in the file of the run before.
bool goes_on_in_file(const std::optional<RecordingPosition>& before,
                     const std::optional<RecordingPosition>& now) {
  return before && now && before->lines.size > 0 && before->lines.name == now->lines.name;
}

/// Ends the run where a recording cannot go on in its file.
void require_same_file(const std::optional<RecordingPosition>& before,
                       const std::optional<RecordingPosition>& now, const std::string& what) {
  if (!goes_on_in_file(before, now)) return;
  if (before->columns != now->columns) {
    throw std::runtime_error("Error. The " + what + " of " + now->lines.name +
                             " have changed since the checkpoint: record them in a file of another "
                             "name.");
  }
  utils::require_lines(before->lines);
}

/// Says in the log how results in NetCDF go on.
void say_changes(std::ostream& log, const std::optional<ResultsPosition>& before,
                 const std::optional<ResultsPosition>& now) {
  const auto tell = [&](const char* text) { log << "  Results in NetCDF are " << text << '\n'; };
  if (before && !now) tell("written no more");
  if (now && !before) tell("written from here on");
  if (!now || !before) return;
  if (now->name != before->name) tell("written to another file from here on");
  if (now->snapshots.times != before->snapshots.times) tell("written at other times from here on");
}

/// Opens the file of a recording, at its beginning or where the run before had come to.
template <class Recording, class... Log>
void open_file(Recording& recording, const std::optional<RecordingPosition>& before, double done,
               Log&... log) {
  if (goes_on_in_file(before, recording.position())) {
    recording.go_on(*before, done);
  } else {
    recording.begin_behind(done, log...);
  }
}

}  // namespace

std::unique_ptr<checkpoint::Loaded> Domain::load_checkpoint(const RunSettings& settings) {
  if (settings.restart == nullptr) return nullptr;
  auto loaded =
      std::make_unique<checkpoint::Loaded>(checkpoint::load_newest(settings.restart->checkpoint));
  for (const std::string& warning : loaded->warnings) {
    utils::warn(warning + "; the run goes on from " + loaded->file + ".");
  }
  return loaded;
}

void Domain::require_same_inputs() {
  const checkpoint::Checkpoint& from = restart_->contents;
  const checkpoint::Changes changes = checkpoint::changes_between(from.inputs, inputs_);
  if (!changes.refused.empty() && !settings_.restart->despite_changes) {
    refuse(restart_->file,
           "of what it was taken with this has changed: " + listed(changes.refused) +
               ". With --restart-anyway it goes on all the same");
  }
  std::string text = continuation();
  for (const std::string& name : changes.allowed) text += "  Changed since then: " + name + '\n';
  for (const std::string& name : changes.refused) {
    text += "  Changed since then, and accepted: " + name + '\n';
  }
  settings_.log << text;
  utils::print_delimitator(settings_.log);
}

std::string Domain::continuation() const {
  const fields::Clock& clock = restart_->contents.clock;
  return "Continued from " + restart_->file + " at t = " + utils::number_text(clock.t) +
         " s, after " + std::to_string(clock.steps) + " steps\n";
}

void Domain::require_same_results() const {
  const OutputPositions& before = restart_->contents.outputs;
  const OutputPositions now = output_positions();
  require_same_file(before.gauges, now.gauges, "gauges");
  require_same_file(before.sections, now.sections, "sections");
  require_same_maxima(before.arrival_depth);
  if (results_ && goes_on_in_results()) results_->require(*before.results);
  std::ostream& log = settings_.log;
  RecordingChanges(log, "Gauges").say(before.gauges, now.gauges);
  RecordingChanges(log, "Sections").say(before.sections, now.sections);
  say_changes(log, before.results, now.results);
  if (before.envelope_interval != now.envelope_interval) {
    log << "  The envelope is recorded every " << now.envelope_interval << " s, no more every "
        << before.envelope_interval << " s\n";
  }
  const auto times_of = [](const std::optional<SnapshotPosition>& position) {
    return position ? position->times : std::vector<double>();
  };
  if (times_of(before.snapshots) != times_of(now.snapshots)) {
    log << "  The times of the snapshots have changed\n";
  }
}

bool Domain::goes_on_in_results() const {
  const std::optional<ResultsPosition>& before = restart_->contents.outputs.results;
  return before && before->records > 0 && before->name == results_->position().name;
}

void Domain::require_same_maxima(const std::optional<double>& before) const {
  const std::string key = "\"output/maxima of flow";
  if (!data_.maxima) {
    if (before) settings_.log << "  Maxima of the flow are kept no more\n";
    return;
  }
  if (!before) {
    refuse(restart_->file,
           "it holds no maxima of the flow, which are kept from the start on; leave " + key +
               "\" out");
  }
  if (*before == data_.maxima->arrival_depth) return;
  refuse(restart_->file, key + "/arrival depth\" is " +
                             utils::number_text(data_.maxima->arrival_depth) + " m, which was " +
                             utils::number_text(*before) + " m");
}

template <class Load>
void Domain::load_rows(const Load& load) const {
  try {
    std::ifstream file(restart_->file, std::ios::binary);
    checkpoint::FileReader rows(file);
    // Another run that writes the same checkpoint may have done so meanwhile.
    if (rows.number() != restart_->number) throw checkpoint::BadFile("it was replaced meanwhile");
    load(rows);
    rows.finish();
  } catch (const checkpoint::BadFile& bad) {  // it was whole when it was looked at
    refuse(restart_->file, bad.what());
  }
}

void Domain::load_flow() {
  checkpoint::Checkpoint& from = restart_->contents;
  saved_rows_->gather({});
  const bool has_all_clocks = from.rain.size() == from.flow.rain_clocks.size();
  from.flow.rain_clocks =
      checkpoint::rain_clocks_for(case_, from.clock.t, from.rain, from.flow.rain_clocks);
  if (!has_all_clocks || !fields::fits(from.flow, saved_rows_->flow(), case_)) {
    refuse_other_flow();
  }
  load_rows([&](utils::ByteSource& rows) { flow_->load(from.flow, rows); });
}

void Domain::refuse_other_flow() const {
  refuse(restart_->file, "it is one of another mesh or model");
}

void Domain::load_books() {
  const checkpoint::Checkpoint& from = restart_->contents;
  const bool has_books = settings_.report != nullptr && !from.report.empty();
  saved_rows_->gather({&looks_->at_cells(), has_books});
  const fields::SavedFlow& present = saved_rows_->flow();
  const bool notes_fit = !has_books || fields::fits(fields::SavedPart::notes, from.flow, present);
  if (!notes_fit || !fields::fits(fields::SavedPart::infiltrated, from.flow, present)) {
    refuse_other_flow();
  }
  try {
    utils::take_out_of(from.looks, *looks_);
    if (has_books) settings_.report->load(from.report);
  } catch (const utils::BadBytes& bad) {
    refuse(restart_->file, bad.what());
  }
  has_warned_of_much_ = from.has_warned_of_much_below_zero;
  load_rows([&](utils::ByteSource& rows) {
    flow_->load_books(from.flow, has_books, looks_->at_cells(), rows);
  });
  if (settings_.report == nullptr) return;
  settings_.report->continue_from(clock_.t, from.flow.rain_clocks, has_books);
}

void Domain::go_on_with_outputs() {
  const OutputPositions& from = restart_->contents.outputs;
  outputs_done_ = from.done;
  next_enveloppe_time = next_time_after_change(from.done, from.next_envelope,
                                               from.envelope_interval, data_.dt_enveloppe);
  if (gauge) open_file(*gauge, from.gauges, from.done, settings_.log);
  if (monitor_section) open_file(*monitor_section, from.sections, from.done);
  if (picture) {
    picture->go_on(from.snapshots.value_or(SnapshotPosition{}), from.done);
  }
  if (results_) {
    if (goes_on_in_results()) {
      results_->go_on(*from.results, from.done);
    } else {
      results_->skip_to(from.done);
    }
  }
  restart_.reset();
}
