#include "report/RunReport.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "report/cell_json.hpp"
#include "report/failure_surroundings.hpp"
#include "utils/OutputFile.hpp"
#include "utils/files.hpp"
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
    result[cases::boundary_kinds[k].books] = {
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

void RunReport::take_data_file(const utils::KeyUses& uses, double t_start, double t_end) {
  key_uses_ = uses;
  t_start_ = t_start;
  t_end_ = t_end;
}

void RunReport::begin(fields::Flow& flow, const cases::Case& contents, const fields::Clock& clock,
                      const WaterLooks& looks) {
  looks_ = &looks;
  clock_of_run_ = &clock;
  if (utils::is_input_file(file_)) {
    utils::fatal("Error. The report " + file_ + " would replace an input file of this run.\n");
  }
  enter(Phase::steps);
  flow_ = &flow;
  case_ = &contents;
  ground_ = flow.ground(contents);
  flow.watch();
  ledger_ = std::make_unique<VolumeLedger>(flow, contents);
  smallest_cell_ = flow.looks(contents)->bounds().smallest;
  note_state();
}

void RunReport::load(const utils::Bytes& books) { utils::take_out_of(books, *this); }

json RunReport::json_of(const std::string& text) {
  json parsed = json::parse(text, nullptr, false);
  if (parsed.is_discarded()) throw utils::BadBytes();
  return parsed;
}

void RunReport::continue_from(double t, const std::vector<physics::RainClock>& rain_clocks,
                              bool has_books) {
  continued_at_ = t;
  if (!has_books) books_since_ = t;
  ledger_->set_rain_clocks(rain_clocks);
}

void RunReport::add_step(double t, double dt) {
  ++steps_;
  ledger_->add_step(t, dt);
  note_state();
}

/// The state that the clock stands at, and the step that it set.
void RunReport::note_state() {
  const physics::StepNotes& notes = flow_->notes();
  StepRecord step = {clock_of_run_->t, clock_of_run_->dt, notes.limiting_cell, {}};
  if (step.cell >= 0) step.state = flow_->state(step.cell);
  history_.add(step);
  note_peak(fastest_, notes.speed_squared);
  note_peak(most_rapid_, notes.speed_squared_per_depth);
  note_films(notes);
  if (notes.not_finite > 0 && lost_at_step_ < 0) {
    lost_at_step_ = steps_;
    lost_at_t_ = clock_of_run_->t;
  }
}

void RunReport::note_peak(Peak& peak, const physics::FlowRecord& record) const {
  if (record.value > peak.record.value) {
    peak = {record, clock_of_run_->t, flow_->state(record.cell)};
  }
}

void RunReport::note_films(const physics::StepNotes& notes) {
  if (notes.films == 0) return;
  // No cell was as rapid before the first ones.
  if (most_films_ == 0) first_film_ = most_rapid_;
  ++steps_with_films_;
  most_films_ = std::max(most_films_, notes.films);
}

void RunReport::add_failure(const std::string& what, cases::Number cell,
                            const std::string& snapshot) {
  what_failed_ = what;
  if (has_failure()) return;
  failure_ = {{"what", what}, {"time_s", clock_of_run_->t}, {"steps_computed", steps_}};
  if (cell >= 0) failure_.update(surroundings_of(*flow_, *ground_, *case_, clock_of_run_->t, cell));
  failure_["snapshot"] = snapshot;
  failure_["last_steps"] = last_steps();
}

bool RunReport::write(int status, const std::string& message) {
  enter(Phase::outputs);
  if (utils::is_input_file(file_)) return true;  // begin() says so, unless the run ended before
  json report = {{"data_file", data_file_},
                 {"outcome", outcome(status, message)},
                 {"time", simulated_time()},
                 {"wall_time", wall_times()}};
  if (flow_ != nullptr && flow_->takes_questions()) add_what_the_flow_tells(report);
  if (!failure_.is_null()) report["failure"] = failure_;
  report["keys"] = keys();
  utils::WholeFile file(file_);
  utils::TextBuffer text;
  text << report.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
  return file.commit(text);
}

void RunReport::add_what_the_flow_tells(json& report) const {
  report["execution"] = execution();
  if (books_since_) report["books_since_s"] = *books_since_;
  report["steps"] = steps();
  report["water"] = water_json(ledger_->water());
  if (case_->has_sediments) report["sediment"] = sediment_json(ledger_->sediment());
  report["velocity"] = velocity();
  report["not_a_number"] = not_a_number();
  report["looks"] = {{"taken", looks_->looks()}, {"steps_between", WaterLooks::steps_between}};
  report["below_zero"] = below_zero();
  report["given_out_by_soils_m3"] = looks_->given_out();
  report["films"] = films();
}

// --- Parts of the report -------------------------------------------------------------------------

json RunReport::place_of(cases::Number cell) const {
  return ::place_of(cell, ground_->geometry_of(cell));
}

json RunReport::step_json(const StepRecord& step) const {
  const bool by_wave = step.cell >= 0;
  json result = {{"time_s", step.t},
                 {"step_s", step.dt},
                 {"set_by", by_wave ? "wave" : "dry cells: the smallest cell counts"}};
  const int number = by_wave ? step.cell : smallest_cell_;
  if (number < 0) return result;
  const cases::CellGeometry geometry = ground_->geometry_of(number);
  result.update(::place_of(number, geometry));
  result["length_m"] = geometry.char_length();
  if (!by_wave) return result;
  result["depth_m"] = step.state.h;
  result["velocity_m_per_s"] = speed_of(step.state);
  return result;
}

json RunReport::peak_json(const Peak& peak, const char* name, double value) const {
  if (peak.record.cell < 0) return json();
  json result = {{name, value}, {"time_s", peak.t}};
  result.update(place_of(peak.record.cell));
  result["depth_m"] = peak.state.h;
  return result;
}

json RunReport::last_steps() const {
  json result = json::array();
  for (const StepRecord& step : history_.last()) result.push_back(step_json(step));
  return result;
}

json RunReport::outcome(int status, const std::string& message) const {
  constexpr int first_of_signals = 128;
  const int signal = status - first_of_signals;
  const bool is_interrupted = signal > 0;
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

json RunReport::simulated_time() const {
  const double reached = clock_of_run_ != nullptr ? clock_of_run_->t : 0.0;
  return {{"start_s", t_start_}, {"end_s", t_end_}, {"reached_s", reached}};
}

json RunReport::wall_times() const {
  json result;
  const auto& seconds = clock_.seconds();
  for (std::size_t k = 0; k < seconds.size(); ++k) result[phase_names[k]] = seconds[k];
  result["total_s"] = std::accumulate(seconds.begin(), seconds.end(), 0.0);
  return result;
}

json RunReport::execution() const {
  const fields::ExecutionPath path = flow_->execution_path();
  json result = {{"path", path.name},
                 {"ranks", path.ranks},
                 {"threads", path.threads},
                 {"instruction_set", path.instruction_set},
                 {"flux_scheme", cases::kind_of(case_->scheme).name},
                 {"cells", ground_->counts().cells}};
  if (path.ranks > 1) {
    result["recuts"] = path.recuts;
    result["imbalance"] = path.imbalance;
  }
  if (continued_at_) result["continued_at_s"] = *continued_at_;
  return result;
}

json RunReport::steps() const {
  json begins = json::array(), smallest = json::array(), largest = json::array();
  for (const StepCourse::Span& span : history_.course().spans()) {
    begins.push_back(span.begin);
    smallest.push_back(span.smallest);
    largest.push_back(span.largest);
  }
  json often = json::array();
  for (const StepHistory::CellCount& count : history_.most_frequent()) {
    often.push_back({{"steps", count.steps}});
    often.back().update(place_of(count.cell));
  }
  return {{"computed", steps_},
          {"set", history_.count()},
          {"mean_s", history_.mean()},
          {"largest_s", history_.largest()},
          {"last_s", history_.newest()},
          {"smallest", step_json(history_.smallest())},
          {"set_by_dry_cells", history_.set_by_dry_cells()},
          {"set_most_often_by", often},
          {"course", {{"from_s", begins}, {"smallest_s", smallest}, {"largest_s", largest}}}};
}

json RunReport::velocity() const {
  const double speed = std::sqrt(fastest_.record.value);
  const double froude = physics::froude_number(most_rapid_.record.value);
  json result = {{"largest", peak_json(fastest_, "m_per_s", speed)},
                 {"largest_froude", peak_json(most_rapid_, "froude_number", froude)}};
  if (cases::is_hll(case_->scheme)) {
    result["momentum_taken_from_films_m4_per_s"] = ledger_->momentum_taken();
  }
  return result;
}

json RunReport::not_a_number() const {
  json result = {{"cells_at_end", flow_->notes().not_finite}};
  if (lost_at_step_ < 0) return result;
  result["first_seen_at_s"] = lost_at_t_;
  result["first_seen_after_steps"] = lost_at_step_;
  return result;
}

json RunReport::sighting(const Sighting& first) const {
  if (!first.is_any()) return json();
  json result = {{"time_s", first.t}};
  result.update(place_of(first.cell));
  return result;
}

json RunReport::below_zero() const {
  const fields::ColumnSurvey& depths = looks_->depths();
  return {{"cells_at_end", depths.below_zero},
          {"missing_m3", depths.deficit.value()},
          {"share", depths.share()},
          {"deepest_m", depths.lowest},
          {"first_seen", sighting(looks_->first_below_zero())}};
}

json RunReport::films() const {
  json result = {{"froude_number_above", physics::largest_froude},
                 {"most_cells", most_films_},
                 {"steps_with_any", steps_with_films_},
                 {"first_seen", sighting({first_film_.t, first_film_.record.cell})}};
  if (most_films_ == 0) return result;
  result["first_seen"]["depth_m"] = first_film_.state.h;
  result["first_seen"]["velocity_m_per_s"] = speed_of(first_film_.state);
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
