#include "report/RunReport.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "globals/Globals.hpp"
#include "model/SWE_Exner.hpp"
#include "model/StepWatch.hpp"
#include "report/cell_json.hpp"
#include "report/failure_surroundings.hpp"
#include "utils/OutputFile.hpp"
#include "utils/files.hpp"
#include "utils/signals.hpp"
#include "utils/stop.hpp"

namespace {

using json = nlohmann::ordered_json;

std::string without_line_end(const std::string& text) {
  return text.substr(0, text.find_last_not_of('\n') + 1);
}

json boundaries_json(const PassedByKind& boundaries) {
  json result = json::object();
  for (std::size_t k = 0; k < boundaries.size(); ++k) {
    const Passed& passed = boundaries[k];
    if (passed.edges == 0) continue;
    result[open_kind_names[k]] = {
        {"edges", passed.edges}, {"in_m3", passed.in.value()}, {"out_m3", passed.out.value()}};
  }
  return result;
}

json water_json(const Books& books) {
  return {{"initial_m3", books.initial},
          {"final_m3", books.final},
          {"rain_m3", books.rain},
          {"infiltrated_m3", books.infiltrated},
          {"boundaries", boundaries_json(books.boundaries)},
          {"created_by_clamps_m3", books.created},
          {"error_m3", books.error()},
          {"relative_error", books.relative_error()}};
}

json sediment_json(const Books& books) {
  return {{"initial_m3", books.initial},
          {"final_m3", books.final},
          {"boundaries", boundaries_json(books.boundaries)},
          {"created_by_clamps_m3", books.created},
          {"error_m3", books.error()},
          {"relative_error", books.relative_error()}};
}

}  // namespace

RunReport::RunReport(std::string file, std::string data_file)
    : file_(std::move(file)), data_file_(std::move(data_file)) {
  const std::filesystem::path folder = std::filesystem::path(file_).parent_path();
  std::error_code ignored;
  const bool has_folder = folder.empty() || std::filesystem::is_directory(folder, ignored);
  if (!has_folder || std::filesystem::is_directory(file_, ignored)) {
    throw std::runtime_error("Error. The report " + file_ + " cannot be created: " +
                             (has_folder ? "it is a folder." : "its folder does not exist."));
  }
}

void RunReport::begin(PhysicalModel& model) {
  if (utils::is_input_file(file_)) {
    utils::fatal("Error. The report " + file_ + " would replace an input file of this run.\n");
  }
  enter(Phase::steps);
  model_ = &model;
  model.watch_steps();
  ledger_ = std::make_unique<VolumeLedger>(model);
  const auto smallest = std::min_element(
      model.cells.begin(), model.cells.end(),
      [](const auto& a, const auto& b) { return a->char_length < b->char_length; });
  if (smallest != model.cells.end()) smallest_cell_ = (*smallest)->id;
  note_state();
}

void RunReport::add_step(double t, double dt) {
  ++steps_;
  ledger_->add_step(t, dt);
  note_state();
}

/// The state that the clock stands at, and the step that it set.
void RunReport::note_state() {
  const physics::StepNotes& notes = model_->step_watch().notes();
  StepRecord step = {Globals::t, Globals::dt, notes.limiting_cell, {}};
  if (step.cell >= 0) step.state = model_->state_of(step.cell);
  history_.add(step);
  note_peak(fastest_, notes.speed_squared);
  note_peak(most_rapid_, notes.speed_squared_per_depth);
  if (notes.not_finite > 0 && lost_at_step_ < 0) {
    lost_at_step_ = steps_;
    lost_at_t_ = Globals::t;
  }
}

void RunReport::note_peak(Peak& peak, const physics::FlowRecord& record) const {
  if (record.value > peak.record.value) {
    peak = {record, Globals::t, model_->state_of(record.cell)};
  }
}

void RunReport::add_failure(const std::string& what, int cell, const std::string& snapshot) {
  what_failed_ = what;
  if (has_failure()) return;
  failure_ = {{"what", what}, {"time_s", Globals::t}, {"steps_computed", steps_}};
  if (cell >= 0) failure_.update(surroundings_of(*model_, cell));
  failure_["snapshot"] = snapshot;
  failure_["last_steps"] = last_steps();
}

void RunReport::write(int status, const std::string& message) {
  enter(Phase::outputs);
  if (utils::is_input_file(file_)) return;  // begin() says so, unless the run ended before
  json report = {{"data_file", data_file_},
                 {"outcome", outcome(status, message)},
                 {"time", simulated_time()},
                 {"wall_time", wall_times()}};
  if (model_ != nullptr) add_what_the_model_tells(report);
  if (!failure_.is_null()) report["failure"] = failure_;
  report["keys"] = keys();
  utils::WholeFile file(file_);
  utils::TextBuffer text;
  text << report.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
  file.commit(text);
}

void RunReport::add_what_the_model_tells(json& report) const {
  model_->publish();
  report["execution"] = execution();
  report["steps"] = steps();
  report["water"] = water_json(ledger_->water());
  if (dynamic_cast<const SWE_Exner*>(model_) != nullptr) {
    report["sediment"] = sediment_json(ledger_->sediment());
  }
  report["velocity"] = velocity();
  report["not_a_number"] = not_a_number();
}

// --- Parts of the report -------------------------------------------------------------------------

const ComputationalCell& RunReport::cell(int number) const {
  return *model_->cells[static_cast<std::size_t>(number)];
}

json RunReport::step_json(const StepRecord& step) const {
  const bool by_wave = step.cell >= 0;
  json result = {{"time_s", step.t},
                 {"step_s", step.dt},
                 {"set_by", by_wave ? "wave" : "dry cells: the smallest cell counts"}};
  const int number = by_wave ? step.cell : smallest_cell_;
  if (number < 0) return result;
  result.update(place_of(cell(number)));
  result["length_m"] = cell(number).char_length;
  if (!by_wave) return result;
  result["depth_m"] = step.state.h;
  result["velocity_m_per_s"] = speed_of(step.state);
  return result;
}

json RunReport::peak_json(const Peak& peak, const char* name, double value) const {
  if (peak.record.cell < 0) return json();
  json result = {{name, value}, {"time_s", peak.t}};
  result.update(place_of(cell(peak.record.cell)));
  result["depth_m"] = peak.state.h;
  return result;
}

json RunReport::last_steps() const {
  json result = json::array();
  for (const StepRecord& step : history_.last()) result.push_back(step_json(step));
  return result;
}

json RunReport::outcome(int status, const std::string& message) const {
  const int signal = utils::interrupting_signal();
  const bool is_interrupted = signal != 0 && status == 128 + signal;
  const bool has_failed = status != 0 && !is_interrupted;
  std::string reason = "the end time was reached";
  if (is_interrupted) {
    reason = "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
  } else if (has_failed && !message.empty()) {
    reason = without_line_end(message);
  } else if (has_failed) {
    reason = what_failed_.empty() ? "see the messages of the run" : what_failed_;
  }
  if (!has_failed && lost_at_step_ >= 0) reason += ", but not every state is a number";
  const char* const outcome = has_failed ? "failed" : is_interrupted ? "interrupted" : "complete";
  constexpr int status_bits = 0xff;
  return {{"status", outcome}, {"reason", reason}, {"exit_status", status & status_bits}};
}

json RunReport::simulated_time() {
  return {{"start_s", Globals_Params::tStart},
          {"end_s", Globals_Params::tEnd},
          {"reached_s", Globals::t}};
}

json RunReport::wall_times() const {
  json result;
  const auto& seconds = clock_.seconds();
  for (std::size_t k = 0; k < seconds.size(); ++k) result[phase_names[k]] = seconds[k];
  result["total_s"] = std::accumulate(seconds.begin(), seconds.end(), 0.0);
  return result;
}

json RunReport::execution() const {
  const ExecutionPath path = model_->execution_path();
  return {{"path", path.name},
          {"threads", path.threads},
          {"instruction_set", path.instruction_set},
          {"cells", model_->n_cells}};
}

json RunReport::steps() const {
  json often = json::array();
  for (const StepHistory::CellCount& count : history_.most_frequent()) {
    often.push_back({{"steps", count.steps}});
    often.back().update(place_of(cell(count.cell)));
  }
  return {{"computed", steps_},
          {"set", history_.count()},
          {"mean_s", history_.mean()},
          {"largest_s", history_.largest()},
          {"last_s", history_.newest()},
          {"smallest", step_json(history_.smallest())},
          {"set_by_dry_cells", history_.set_by_dry_cells()},
          {"set_most_often_by", often}};
}

json RunReport::velocity() const {
  const double speed = std::sqrt(fastest_.record.value);
  const double froude = physics::froude_number(most_rapid_.record.value);
  return {{"largest", peak_json(fastest_, "m_per_s", speed)},
          {"largest_froude", peak_json(most_rapid_, "froude_number", froude)}};
}

json RunReport::not_a_number() const {
  json result = {{"cells_at_end", model_->step_watch().notes().not_finite}};
  if (lost_at_step_ < 0) return result;
  result["first_seen_at_s"] = lost_at_t_;
  result["first_seen_after_steps"] = lost_at_step_;
  return result;
}

json RunReport::keys() const {
  json result = {{"read", key_uses_.read}};
  result["defaulted"] = json::object();
  for (const auto& [key, value] : key_uses_.defaulted) result["defaulted"][key] = value;
  result["unused"] = key_uses_.unused;
  result["ignored"] = json::array();
  for (const auto& [key, nearest] : key_uses_.ignored) {
    result["ignored"].push_back(
        {{"key", key}, {"nearest_known_key", nearest.empty() ? json() : json(nearest)}});
  }
  return result;
}
