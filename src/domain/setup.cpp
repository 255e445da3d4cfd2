// Set-up of a run: its case, its outputs, and the summary of both in the log.
#include <filesystem>

#include "case/implausible_case.hpp"
#include "case/plausibility.hpp"
#include "case/read_requests.hpp"
#include "domain/Domain.hpp"
#include "report/RunReport.hpp"
#include "utils/TextScanner.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

Domain::Domain(const std::string& data_file, const RunSettings& settings)
    : settings_(settings),
      restart_(load_checkpoint(settings)),
      data_file_(data_file),
      read_(read_case(data_file)) {
  if (settings.checkpoints != nullptr) {
    keeper_ = std::make_unique<checkpoint::CheckpointKeeper>(*settings.checkpoints);
  }
  if (keeper_ || is_restarted()) {
    const cases::InputSums sums = shared_ ? shared_->input_sums() : cases::input_sums_of(case_);
    inputs_ = checkpoint::inputs_of(case_, sums, settings.version);
  }
  if (is_restarted()) require_same_inputs();
  ground_ = shared_ ? shared_->ground() : std::make_unique<fields::WholeGround>(case_);
  set_outputs();
  if (is_restarted()) require_same_results();
  set_other_parameters();
  if (keeper_ || is_restarted()) saved_rows_ = flow_->saved_rows();
  if (is_restarted()) load_flow();
  // The loop does not wait for the system to give memory.
  if (keeper_) saved_rows_->gather({});
  warn_of_implausible_input();
}

cases::ReadCase Domain::read_case(const std::string& data_file) {
  cases::Listeners listeners{settings_.log, settings_.console};
  if (settings_.report != nullptr) {
    listeners.on_keys = [this](const utils::KeyUses& uses, const cases::Case& contents) {
      settings_.report->take_data_file(uses, contents.t_start, contents.t_end);
    };
  }
  if (!can_share_case()) return cases::read_case(data_file, listeners, diagnostics_);
  shared_ = std::make_unique<fields::SharedCase>(*settings_.flow.ranks.group, data_file, listeners,
                                                 diagnostics_);
  return shared_->take_case();
}

// What needs the whole case: the objects.
bool Domain::can_share_case() const {
  const fields::RanksRequest& ranks = settings_.flow.ranks;
  const bool has_ranks = ranks.group != nullptr && ranks.group->size() > 1 && ranks.can_read_files;
  return has_ranks && settings_.flow.path != "objects";
}

void Domain::fetch_mesh() {
  cases::WithoutWarnings silent;
  cases::Case whole =
      cases::read_case(data_file_, cases::NoListeners().listeners(), silent).contents;
  read_.contents.mesh = std::move(whole.mesh);
  read_.contents.fields = std::move(whole.fields);
  shared_.reset();
}

void Domain::set_outputs() {
  std::ostream& log = settings_.log;
  const std::filesystem::path folder = std::filesystem::path(data_.output_folder).parent_path();
  std::error_code ignored;
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    utils::warn("the output folder " + folder.string() + " does not exist: results will be lost.");
  }

  log << "Output parameters:\n";
  next_enveloppe_time = case_.t_start;
  envelope_file_ = data_.output_folder + "enveloppe.txt";
  log << "  Maximum values will be recorded every: " << data_.dt_enveloppe << " s\n";
  set_maxima();
  if (data_.final_state) {
    log << "  Final state: written to " << data_.output_folder << *data_.final_state << '\n';
  }
  set_gauges();
  set_pictures();
  set_results();
  set_sections();
  utils::print_delimitator(log);
}

void Domain::set_maxima() {
  if (!data_.maxima) return;
  const std::string name = data_.output_folder + data_.maxima->result;
  settings_.log << "  Maxima of the flow: written to " << name << ", under water from "
                << data_.maxima->arrival_depth << " m on\n";
  maxima_ = std::make_unique<MaximaFile>(name, case_.mesh);
}

void Domain::set_gauges() {
  std::ostream& log = settings_.log;
  log << "  Gauges: ";
  if (!data_.gauges) {
    log << "No gauges\n";
    return;
  }
  log << "positions read in " << *data_.gauges << '\n';
  utils::TextScanner file(*data_.gauges);
  gauge = std::make_unique<Gauge>(cases::read_gauges(file), data_.output_folder, *ground_,
                                  case_.t_start);
  if (!is_restarted()) gauge->begin(log);
}

void Domain::set_pictures() {
  std::ostream& log = settings_.log;
  log << "  Pictures of the hydraulic state: ";
  if (!data_.pictures) {
    log << "No pictures\n";
    return;
  }
  log << "times read in " << *data_.pictures << '\n';
  utils::TextScanner file(*data_.pictures);
  picture = std::make_unique<CPicture>(cases::read_snapshots(file), data_.output_folder, case_);
}

void Domain::set_results() {
  if (!data_.results) return;
  const std::optional<std::string>& own_times = data_.results->times;
  settings_.log << "  Results in NetCDF: written to " << data_.output_folder << data_.results->name
                << ", times read in " << (own_times ? *own_times : *data_.pictures) << '\n';
  std::vector<double> times;
  if (own_times) {
    utils::TextScanner file(*own_times);
    times = cases::read_snapshots(file).times;
  } else {
    times = picture->times();
  }
  const std::unique_ptr<fields::ListedMesh> mesh = listed_mesh();
  results_ = std::make_unique<ResultsFile>(data_, std::move(times), case_, *mesh);
  // Of several ranks, none has what the file lists of the mesh once there is a flow.
  if (!is_restarted() || !goes_on_in_results()) results_->begin(*mesh);
}

std::unique_ptr<fields::ListedMesh> Domain::listed_mesh() const {
  if (shared_) return shared_->listed_mesh();
  const physics::PlanPoint origin = {data_.origin[0], data_.origin[1]};
  return std::make_unique<fields::WholeListedMesh>(case_, origin);
}

void Domain::set_sections() {
  std::ostream& log = settings_.log;
  log << "  Section where to measure the discharge: ";
  if (!data_.discharges) {
    log << "No section to monitor\n";
    return;
  }
  log << "sections read in " << *data_.discharges << '\n';
  utils::TextScanner file(*data_.discharges);
  monitor_section = std::make_unique<CMonitorSection>(
      cases::read_sections(file, ground_->counts().edges), *ground_, case_.t_start);
  if (!is_restarted()) monitor_section->begin();
}

void Domain::set_other_parameters() {
  std::ostream& log = settings_.log;
  log << "Other parameters:\n";
  fields::FlowRequest request = settings_.flow;
  request.ranks.shared = shared_.get();
  if (shared_) request.fetch_mesh = [this] { fetch_mesh(); };
  flow_ = fields::make_flow(case_, diagnostics_, request);
  ground_ = flow_->ground(case_);
  if (data_.maxima) flow_->keep_maxima(data_.maxima->arrival_depth);
  if (settings_.flow.asks_for_card()) {
    const fields::ExecutionPath path = flow_->execution_path();
    log << "  Graphics card: " << path.instruction_set << '\n';
    for (std::size_t rank = 1; rank < path.ranks_run_on.size(); ++rank) {
      log << "  Graphics card of rank " << rank << ": " << path.ranks_run_on[rank] << '\n';
    }
  }
  const fields::FlowScales scales = flow_->scales();
  log << "  Largest initial water depth (h0): " << scales.h0 << '\n'
      << "  Minimal characteristic length in a cell (min dx): " << scales.char_length_min << '\n'
      << "  ZERO depth: " << case_.zero_depth << '\n';
  utils::print_delimitator(log);
}

void Domain::warn_of_implausible_input() {
  const auto check_interval = [&](const std::string& name, double interval) {
    const auto remark = plausibility::on_interval(name, interval);
    if (remark) diagnostics_.warn(plausibility::sentence(*remark));
  };
  cases::warn_of_implausible_parameters(case_, diagnostics_);
  check_interval("\"output/time step enveloppe of results\"", data_.dt_enveloppe);
  if (gauge) check_interval(*data_.gauges + ": the recording interval", gauge->interval());
  if (monitor_section) {
    check_interval(*data_.discharges + ": the recording interval", monitor_section->interval());
  }
  cases::warn_of_implausible_fields(
      shared_ ? shared_->implausible() : cases::implausible_fields(case_), case_, data_,
      read_.area_loss, diagnostics_);
}

cases::Number Domain::CellWithPoint(double x, double y) const {
  const physics::PlanPoint point = {x, y};
  return ground_->cells_at({&point, 1}).front();
}
