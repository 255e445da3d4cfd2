#include "interfaces/TimeSeries.hpp"

#include <filesystem>
#include <map>
#include <system_error>

#include "case/read_series.hpp"

namespace {

/// The series of a file that is in use, if there is one.
std::weak_ptr<const TimeSeries>& series_of(const std::string& file) {
  static std::map<std::filesystem::path, std::weak_ptr<const TimeSeries>> known;
  // A relative name means another file in another working directory.
  std::error_code ignored;
  return known[std::filesystem::weakly_canonical(file, ignored)];
}

}  // namespace

TimeSeries::TimeSeries(const std::string& file) : TimeSeries(cases::read_series(file)) {}

TimeSeries::TimeSeries(const cases::Series& series) : times(series.times), values(series.values) {}

std::shared_ptr<const TimeSeries> TimeSeries::share(const cases::Series& series) {
  const auto shared = std::make_shared<const TimeSeries>(series);
  series_of(series.file) = shared;
  return shared;
}

std::shared_ptr<const TimeSeries> TimeSeries::from_file(const std::string& file) {
  std::weak_ptr<const TimeSeries>& entry = series_of(file);
  std::shared_ptr<const TimeSeries> series = entry.lock();
  if (!series) {
    series = std::make_shared<const TimeSeries>(file);
    entry = series;
  }
  return series;
}

double TimeSeries::value_at(double t, int i) const {
  return physics::value_of_series(samples(), i, t);
}
