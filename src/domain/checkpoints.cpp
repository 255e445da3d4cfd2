// Checkpoints of a run: taken between two steps, before the outputs that are due then.
#include "domain/Domain.hpp"
#include "report/RunReport.hpp"

void Domain::keep_checkpoint() {
  if (gauge) gauge->wait();
  if (monitor_section) monitor_section->wait();
  checkpoint::Checkpoint& kept = keeper_->contents();
  kept.inputs = inputs_;
  kept.rain = checkpoint::rain_of(case_);
  kept.clock = clock_;
  kept.outputs = output_positions();
  kept.has_warned_of_much_below_zero = has_warned_of_much_;
  utils::put_into(kept.looks, *looks_);
  const bool has_report = settings_.report != nullptr;
  if (has_report) settings_.report->save(kept.report);
  saved_rows_->gather({&looks_->at_cells(), has_report});
  kept.flow = saved_rows_->flow();
  keeper_->write(*saved_rows_, [this, &kept] { return has_written_results(kept.outputs); });
}

void Domain::keep_last_checkpoint() {
  if (std::isnan(clock_.t)) return;  // nothing could go on from there
  keep_checkpoint();
  keeper_->finish();
}

OutputPositions Domain::output_positions() const {
  OutputPositions positions;
  positions.done = outputs_done_;
  if (gauge) positions.gauges = gauge->position();
  if (monitor_section) positions.sections = monitor_section->position();
  if (picture) positions.snapshots = picture->position();
  if (results_) positions.results = results_->position();
  positions.envelope_interval = data_.dt_enveloppe;
  positions.next_envelope = next_enveloppe_time;
  if (data_.maxima) positions.arrival_depth = data_.maxima->arrival_depth;
  return positions;
}

bool Domain::has_written_results(const OutputPositions& positions) {
  if (picture) picture->wait();
  envelope_writer_.wait();
  if (maxima_) maxima_->wait();
  if (results_) results_->wait();
  for (const auto& recording : {positions.gauges, positions.sections}) {
    if (recording) utils::bring_to_disk(recording->lines);
  }
  return !envelope_writer_.has_failed() && !(maxima_ && maxima_->has_failed()) &&
         !(gauge && gauge->has_failed()) && !(picture && picture->has_failed()) &&
         !(monitor_section && monitor_section->has_failed()) &&
         !(results_ && results_->has_failed());
}
