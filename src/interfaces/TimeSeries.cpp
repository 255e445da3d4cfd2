#include "interfaces/TimeSeries.hpp"

#include <filesystem>
#include <map>
#include <system_error>

#include "physics/time_series.hpp"
#include "utils/TextScanner.hpp"

TimeSeries::TimeSeries(const std::string& file) {
  utils::TextScanner scanner(file);
  const int count = scanner.read_count("number of samples", 2);
  if (count < 2) scanner.refuse("number of samples", "at least 2");
  times.reserve(static_cast<std::size_t>(count));
  values.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    scanner.begin_record("sample", i, count);
    const double time = scanner.read_number("time");
    if (i > 0 && !(time > times.back())) {
      scanner.refuse("time", "a time later than that of the sample before");
    }
    times.push_back(time);
    values.push_back(scanner.read_number("value"));
  }
}

std::shared_ptr<const TimeSeries> TimeSeries::from_file(const std::string& file) {
  static std::map<std::filesystem::path, std::weak_ptr<const TimeSeries>> known;
  // A relative name means another file in another working directory.
  std::error_code ignored;
  std::weak_ptr<const TimeSeries>& entry = known[std::filesystem::weakly_canonical(file, ignored)];
  std::shared_ptr<const TimeSeries> series = entry.lock();
  if (!series) {
    series = std::make_shared<const TimeSeries>(file);
    entry = series;
  }
  return series;
}

double TimeSeries::value_at(double t, int i) const {
  if (t >= times.back()) return values.back();
  const auto k = static_cast<std::size_t>(i);
  return physics::interpolate_linear(t, times[k], times[k + 1], values[k], values[k + 1]);
}
