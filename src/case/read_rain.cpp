#include "case/read_rain.hpp"

#include <algorithm>

#include "case/plausibility.hpp"
#include "utils/TextScanner.hpp"
#include "utils/stop.hpp"

namespace cases {

std::vector<Hyetogram> read_rain(const std::string& name, Diagnostics& diagnostics) {
  const auto warn = [&](const std::string& text) { diagnostics.warn(text); };
  utils::TextScanner file(name);
  utils::RepeatedWarning out_of_order("hyetograms out of order.", warn);
  utils::RepeatedWarning implausible("about hyetograms.", warn);
  return read_hyetograms(file, [&](const Hyetogram& hyetogram) {
    if (!std::is_sorted(hyetogram.times.begin(), hyetogram.times.end())) {
      out_of_order.add("hyetogram " + std::to_string(hyetogram.id) +
                       " has an interval that starts before the one above it: of those that have "
                       "started, the last in the file counts.");
    }
    for (const std::string& remark :
         plausibility::on_hyetogram(name, hyetogram.id, hyetogram.step, hyetogram.intensities)) {
      implausible.add(plausibility::sentence(remark));
    }
  });
}

}  // namespace cases
