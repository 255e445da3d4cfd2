#include "output/ResultsFile.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "utils/files.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

namespace fs = std::filesystem;

using Piece = utils::WriterThread::Piece;

ugrid::Contents contents_of(const cases::DataFile& data, const cases::Case& contents,
                            const fields::ListedMesh& mesh) {
  ugrid::Contents result;
  result.title = data.simulation_name;
  if (data.epsg) result.crs = ugrid::Crs{*data.epsg, {}, {}};
  result.epoch = data.epoch;
  result.n_nodes = cases::at(mesh.counts().nodes);
  result.n_faces = cases::at(mesh.counts().cells);
  result.width = mesh.width();
  result.has_sediments = contents.has_sediments;
  result.has_infiltration = contents.has_infiltration;
  result.has_maxima_of_flow = data.maxima.has_value();
  result.has_largest_depths = true;
  result.is_double = data.results->is_double;
  return result;
}

/// Readers look for a time among those of a file.
void require_order(const cases::DataFile& data, const std::vector<double>& times) {
  const std::string file = data.results->times ? *data.results->times : *data.pictures;
  for (std::size_t i = 1; i < times.size(); ++i) {
    if (times[i] > times[i - 1]) continue;
    utils::fatal("Error in file " + file + ": snapshot " + std::to_string(i) +
                 " (counted from 0): found the time " + utils::number_text(times[i]) + " after " +
                 utils::number_text(times[i - 1]) +
                 ", expected times that increase, for the results in NetCDF.\n");
  }
}

[[noreturn]] void refuse(const std::string& name, const std::string& trouble) {
  utils::fatal("Error. The file " + name + " " + trouble + ".\n");
}

/// The file itself, or the one that a link leads to.
std::string regular_file_at(const std::string& name) {
  std::error_code ignored;
  const bool is_linked = fs::is_symlink(name, ignored);
  const fs::path target = is_linked ? fs::canonical(name, ignored) : fs::path();
  const std::string place = target.empty() ? name : target.string();
  const auto status = fs::symlink_status(place, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    refuse(name, "couldn't be created: expected the name of a regular file, or a new one");
  }
  return place;
}

ugrid::ClassicLayout bytes_of(const std::string& name, const ugrid::UgridLayout& layout) {
  try {
    return ugrid::classic_layout(layout.definitions());
  } catch (const std::length_error& error) {
    refuse(name, std::string("couldn't be created: ") + error.what());
  }
}

std::string reason_of(int error) { return std::generic_category().message(error); }

std::string part_of(const std::string& place) { return place + ".part"; }

}  // namespace

ResultsFile::ResultsFile(const cases::DataFile& data, std::vector<double> times,
                         const cases::Case& contents, const fields::ListedMesh& mesh)
    : case_(contents),
      name_(data.output_folder + data.results->name),
      place_(regular_file_at(name_)),
      times_(std::move(times)),
      layout_(contents_of(data, contents, mesh)),
      bytes_(bytes_of(name_, layout_)) {
  require_order(data, times_);
}

ResultsFile::~ResultsFile() {
  wait();
  if (file_.is_open() && !is_in_place_) std::remove(part_of(place_).c_str());
}

void ResultsFile::begin(fields::ListedMesh& mesh) {
  if (utils::is_input_file(place_) || utils::is_input_file(part_of(place_))) {
    refuse(name_, "isn't written: it, or its name with .part, is an input file of this run");
  }
  if (const int error = file_.create_anew(part_of(place_)); error != 0) {
    refuse(name_, "couldn't be created: " + reason_of(error));
  }
  classic_.emplace(file_, bytes_);
  classic_->begin();
  layout_.put_topology(*classic_);
  while (const auto rows = mesh.next()) layout_.put_rows_of_mesh(*classic_, *rows);
  layout_.put_no_maxima(*classic_);
  if (classic_->error() == 0) return;
  std::remove(part_of(place_).c_str());
  refuse(name_, "couldn't be written completely: " + reason_of(classic_->error()));
}

void ResultsFile::skip_to(double done) { next_ = next_snapshot(times_, {}, done); }

void ResultsFile::require(const ResultsPosition& position) const {
  const auto cannot_go_on = [&](const std::string& trouble) {
    utils::fatal("Error. The result file " + name_ + " " + trouble + ": it can't be continued.\n");
  };
  if (utils::is_input_file(place_)) cannot_go_on("is an input file of this run");
  const std::string fault = ugrid::fault_of_start(place_, bytes_, position.records);
  if (!fault.empty()) cannot_go_on(fault);
  const WrittenRecords& known = position.written;
  if (known.count == 0) return;
  if (ugrid::checksum_of_record(place_, bytes_, known.count - 1) != known.checksum) {
    cannot_go_on("doesn't hold any more what it held at the checkpoint");
  }
}

void ResultsFile::go_on(const ResultsPosition& position, double done) {
  next_ = next_snapshot(times_, position.snapshots, done);
  int error = file_.open_as_it_is(place_);
  is_in_place_ = true;
  if (error == 0) {
    records_ = position.records;
    const auto checksum = ugrid::checksum_of_record(place_, bytes_, records_ - 1);
    if (!checksum) refuse(name_, "couldn't be read");
    written_ = {records_, *checksum};
    classic_.emplace(file_, bytes_);
    classic_->go_on(records_);
    layout_.put_no_maxima(*classic_);
    error = classic_->error();
  }
  if (error != 0) refuse(name_, "couldn't be continued: " + reason_of(error));
}

ResultsPosition ResultsFile::position() const {
  const std::lock_guard lock(mutex_);
  return {name_, {times_, next_}, records_, written_};
}

void ResultsFile::WriteMeasure(const fields::Flow& flow) {
  writer_.wait();
  if (has_failed()) return;
  gather(layout_.quantities_in_time(), flow);
  ++records_;
  writer_.hand_over_pieces(pieces(times_[next_++]));
}

void ResultsFile::finish(const fields::Flow& flow) {
  writer_.wait();
  if (has_failed()) return;
  gather(layout_.maxima(), flow);
  writer_.hand_over_pieces(pieces({}));
}

void ResultsFile::gather(const std::vector<fields::Quantity>& quantities,
                         const fields::Flow& flow) {
  std::set<fields::Field> needed;
  for (const fields::Quantity& quantity : quantities) {
    needed.insert({quantity.source, quantity.depth});
  }
  fields_.assign(needed.begin(), needed.end());
  if (flow_ != &flow) rows_ = flow.value_rows(case_);
  flow_ = &flow;
  rows_->gather(fields_);
}

utils::WriterThread::Pieces ResultsFile::pieces(std::optional<double> t) {
  return [this, t, is_first = true]() mutable -> std::optional<Piece> {
    if (!std::exchange(is_first, false)) return next_piece(t);
    const bool is_all = !rows_->has_others();
    auto work = [this, t, is_all] {
      put_first_cells(t);
      return !is_all || finish_result(t.has_value());
    };
    return Piece{std::move(work), is_all};
  };
}

std::optional<Piece> ResultsFile::next_piece(std::optional<double> t) {
  std::optional<fields::RowText> rows = rows_->next();
  if (!rows) return {};
  const bool is_last = rows->is_last;
  auto work = [this, bytes = std::move(rows->text), is_snapshot = t.has_value(), is_last] {
    put_next_cells(is_snapshot, bytes);
    return !is_last || finish_result(is_snapshot);
  };
  return Piece{std::move(work), is_last};
}

void ResultsFile::put_first_cells(std::optional<double> t) {
  cells_ = 0;
  rest_.clear();
  if (t) layout_.put_time(*classic_, written_.count, *t);
  put_cells(t.has_value(), rows_->columns(), rows_->bed());
}

void ResultsFile::put_next_cells(bool is_snapshot, const std::string& bytes) {
  const auto added = std::as_bytes(std::span(bytes));
  rest_.insert(rest_.end(), added.begin(), added.end());
  const std::size_t bytes_per_row = (fields_.size() + 1) * sizeof(double);
  const std::size_t rows = rest_.size() / bytes_per_row;
  fields::Columns columns;
  std::vector<double> bed(rows);
  std::vector<double*> places;
  for (const fields::Field field : fields_) {
    columns[field].resize(rows);
    places.push_back(columns[field].data());
  }
  places.push_back(bed.data());
  utils::MemorySource source(rest_);
  fields::take_rows(places, rows, source);
  rest_.erase(rest_.begin(), rest_.end() - static_cast<std::ptrdiff_t>(source.left()));
  put_cells(is_snapshot, columns, bed);
}

void ResultsFile::put_cells(bool is_snapshot, const fields::Columns& columns,
                            const std::vector<double>& bed) {
  const fields::CellValues cells = {columns, bed, case_.zero_depth};
  if (is_snapshot) {
    layout_.put_cells_of_snapshot(*classic_, written_.count, cells_, cells);
  } else {
    layout_.put_cells_of_maxima(*classic_, cells_, cells);
  }
  cells_ += bed.size();
}

bool ResultsFile::finish_result(bool is_snapshot) {
  if (!is_snapshot) return show(written_.count);
  const std::uint64_t records = written_.count + 1;
  if (!show(records)) return false;
  const std::lock_guard lock(mutex_);
  written_ = {records, classic_->checksum()};
  return true;
}

bool ResultsFile::show(std::uint64_t records) {
  classic_->show(records);
  if (classic_->error() == 0) return put_in_place();
  std::cerr << "Error. The file " + name_ +
                   " couldn't be written completely: " + reason_of(classic_->error()) + ".\n";
  return false;
}

bool ResultsFile::put_in_place() {
  if (is_in_place_) return true;
  is_in_place_ = std::rename(part_of(place_).c_str(), place_.c_str()) == 0;
  if (!is_in_place_) {
    std::cerr << "Error. The file " + name_ + " couldn't be put in its place: " + reason_of(errno) +
                     ".\n";
  }
  return is_in_place_;
}
