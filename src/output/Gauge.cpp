#include "output/Gauge.hpp"

#include <limits>
#include <string>

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "output/COutput.hpp"
#include "utils/TextScanner.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

std::string without_cell(int number, double x, double y) {
  return "gauge " + std::to_string(number) + " (counted from 0) at (" + utils::number_text(x, 15) +
         ", " + utils::number_text(y, 15) +
         ") lies in no cell; its values are written as nan. A point on an edge, or at the centre "
         "of a cell whose nodes run counter-clockwise, belongs to no cell.";
}

/// What a gauge without a cell writes.
HydraulicVariableSWE no_state() {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  HydraulicVariableSWE state;
  state.set_values(nan, nan, nan);
  return state;
}

}  // namespace

Gauge::Gauge(const std::string& path, const CellLocator& cell_with_point, double start_time)
    : next_time_(start_time) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of gauges", 3);
  const std::string name = file.read_word("result file name");
  interval_ = file.read_number("recording interval");
  utils::RepeatedWarning warnings("gauges in no cell.");
  for (int i = 0; i < count; ++i) {
    file.begin_record("gauge", i, count);
    const double x = file.read_number("x");
    const double y = file.read_number("y");
    file.read_number("z");
    cells_.push_back(cell_with_point(x, y));
    if (cells_.back() != nullptr) {
      watched_cells_.push_back(cells_.back()->id);
    } else {
      warnings.add(without_cell(i, x, y));
    }
  }
  output_.open(Globals::g_outputPath + name);
  Globals::spyFile << " Gauge results written in " << name << " \n";

  utils::TextBuffer header;
  header << "time [s]\t";
  // Intended: four titles, although a point writes h, qx, qy and an empty field under them.
  for (int i = 0; i < count; ++i) {
    header << "hs [m]\thw [m]\tqx [m^3/s/m]\tqy [m^3/s/m]\t";
  }
  header << '\n';
  output_.write(header);

  // A gauge without a cell is never copied over: it stays nan.
  buffer_.assign(cells_.size(), no_state());
}

void Gauge::WriteMeasure() {
  next_time_ += interval_;
  Handoff::gauge.start([this] { WriteOutputThread(); });
}

void Gauge::WriteOutputThread() {
  // Intended: the scheduled time, not the time of the step that recorded it.
  Globals::myOutput.Write(output_, cells_, next_time_ - interval_, buffer_);
}
