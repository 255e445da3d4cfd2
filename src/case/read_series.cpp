#include "case/read_series.hpp"

#include "utils/TextScanner.hpp"

namespace cases {

Series read_series(const std::string& file) {
  utils::TextScanner scanner(file);
  Series series{file, {}, {}};
  const int count = scanner.read_count("number of samples", 2);
  if (count < 2) scanner.refuse("number of samples", "at least 2");
  series.times.reserve(at(count));
  series.values.reserve(at(count));
  for (int i = 0; i < count; ++i) {
    scanner.begin_record("sample", i, count);
    const double time = scanner.read_number("time");
    if (i > 0 && !(time > series.times.back())) {
      scanner.refuse("time", "a time later than that of the sample before");
    }
    series.times.push_back(time);
    series.values.push_back(scanner.read_number("value"));
  }
  return series;
}

}  // namespace cases
