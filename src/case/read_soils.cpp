#include "case/read_soils.hpp"

#include "case/plausibility.hpp"
#include "utils/TextScanner.hpp"
#include "utils/stop.hpp"

namespace cases {

namespace {

[[noreturn]] void end_at_unknown_type(const std::string& type) {
  utils::fatal("", -1, "Infiltration type not recognized. Type: " + type + "\n");
}

plausibility::Remarks remarks_on(const std::string& name, const Soil& soil) {
  return std::visit(
      [&](const auto& parameters) { return plausibility::on_soil(name, soil.id, parameters); },
      soil.parameters);
}

}  // namespace

std::vector<Soil> read_soils(const std::string& name, Diagnostics& diagnostics) {
  utils::TextScanner file(name);
  utils::RepeatedWarning warnings("about soils.",
                                  [&](const std::string& text) { diagnostics.warn(text); });
  const auto look_at = [&](const Soil& soil) {
    for (const std::string& remark : remarks_on(name, soil)) {
      warnings.add(plausibility::sentence(remark));
    }
  };
  return read_soil_classes(file, look_at, end_at_unknown_type);
}

}  // namespace cases
