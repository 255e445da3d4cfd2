#include "support/export_names.hpp"

#include <regex>

namespace tools {

bool is_export_name(const std::filesystem::path& name) {
  static const std::string fields =
      "max_depth|max_level|depth|level|velocity|infiltrated_depth|bed|bed_change|"
      "sediment_thickness|peak_depth|peak_level|peak_speed|peak_discharge|hazard|time_of_peak|"
      "arrival_time|time_under_water";
  static const std::string time = "(_[-+.e0-9]+s)?";
  static const std::regex known(
      "(results\\.(nc|pvd)|results_([0-9]{4,}|envelope|maxima)\\.vtu|"
      "(gauges|gauge_points|sections|maxima)\\.csv|report\\.html|"
      "(pictures/)?((" +
      fields + ")" + time + "|gauges|sections)\\.(png|svg|pdf)|(" + fields + ")" + time +
      "\\.tif)(\\.part)?");
  return std::regex_match(name.generic_string(), known);
}

}  // namespace tools
