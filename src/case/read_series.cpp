#include "case/read_series.hpp"

#include "utils/TextScanner.hpp"

namespace cases {

Series read_series(const std::string& file) {
  utils::TextScanner scanner(file);
  Series series{file, {}, {}};
  read_samples(scanner, series);
  return series;
}

}  // namespace cases
