// Set-up of rain and infiltration.
#include <iostream>

#include "case/plausibility.hpp"
#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "sources/GreenAmptTerm.hpp"
#include "sources/HortonTerm.hpp"
#include "utils/files.hpp"
#include "utils/stop.hpp"

namespace {

template <class Term>
std::vector<SourceTerm*> pointers_to(const std::vector<std::unique_ptr<Term>>& terms) {
  std::vector<SourceTerm*> pointers;
  for (const auto& term : terms) pointers.push_back(term.get());
  return pointers;
}

void add_all(utils::RepeatedWarning& warnings, const plausibility::Remarks& remarks) {
  for (const std::string& remark : remarks) warnings.add(plausibility::sentence(remark));
}

std::unique_ptr<SourceTerm> read_green_ampt(utils::TextScanner& file, const std::string& path,
                                            int id, utils::RepeatedWarning& warnings) {
  cases::GreenAmptParameters soil{};
  soil.Ks = file.read_number("hydraulic conductivity Ks");
  soil.psi = file.read_number("suction head psi");
  soil.theta_i = file.read_number("initial moisture content theta_i");
  soil.theta_s = file.read_number("saturated moisture content theta_s");
  soil.L = file.read_number("layer depth L");
  soil.kr = file.read_number("recovery rate kr");
  add_all(warnings, plausibility::on_soil(path, id, soil));
  return std::make_unique<GreenAmptTerm>(id, soil.Ks, soil.psi, soil.theta_i, soil.theta_s, soil.L,
                                         soil.kr);
}

std::unique_ptr<SourceTerm> read_horton(utils::TextScanner& file, const std::string& path, int id,
                                        utils::RepeatedWarning& warnings) {
  cases::HortonParameters soil{};
  soil.f0 = file.read_number("initial capacity f0");
  soil.fc = file.read_number("final capacity fc");
  soil.k = file.read_number("decay coefficient k");
  soil.Fmax = file.read_number("largest infiltration Fmax");
  soil.kr = file.read_number("recovery rate kr");
  add_all(warnings, plausibility::on_soil(path, id, soil));
  return std::make_unique<HortonTerm>(id, soil.f0, soil.fc, soil.k, soil.Fmax, soil.kr);
}

}  // namespace

void Domain::set_source_terms() {
  std::ostream& log = Globals::spyFile;
  log << "Setting source terms\n";
  if (is_rainfall) {
    read_hyetograms(rainfall_file);
    log << "  Hyetograms set from: " << rainfall_file << '\n';
    utils::TextScanner file(hyetocells_file);
    model->set_source_term_by_ID(file, pointers_to(hyetograms));
    log << "  Hyetocells set from: " << hyetocells_file << '\n';
  }
  if (is_infiltration) {
    model->has_infiltration = true;
    read_infiltration(infiltration_file);
    log << "  Infiltration set from: " << infiltration_file << '\n';
    utils::TextScanner file(infiltracells_file);
    model->set_source_term_by_ID(file, pointers_to(infiltrations));
    log << "  Infiltracells set from: " << infiltracells_file << '\n';
  }
  if (is_initial_infiltration) {
    model->has_infiltration = true;
    utils::TextScanner file(initial_infiltration_file);
    model->set_initial_infiltration(file);
    log << "  Initial infiltration set from: " << initial_infiltration_file << '\n';
  }
  utils::print_delimitator(log);
}

void Domain::read_hyetograms(const std::string& path) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of hyetograms", 3);
  hyetograms.reserve(static_cast<std::size_t>(count));
  utils::RepeatedWarning out_of_order("hyetograms out of order.");
  utils::RepeatedWarning implausible("about hyetograms.");
  for (int i = 0; i < count; ++i) {
    file.begin_record("hyetogram", i, count);
    const int id = file.read_integer("ID");
    const int intervals = file.read_count("number of intervals", 2);
    const int dts = file.read_integer("step");
    hyetograms.push_back(std::make_unique<RainTerm>(id, intervals, dts));
    hyetograms.back()->read_hyetogram(file, intervals);
    if (!hyetograms.back()->is_in_order()) {
      out_of_order.add("hyetogram " + std::to_string(id) +
                       " has an interval that starts before the one above it: of those that have "
                       "started, the last in the file counts.");
    }
    add_all(implausible, plausibility::on_hyetogram(path, id, dts, hyetograms.back()->intensities));
  }
}

void Domain::read_infiltration(const std::string& path) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of soil classes", 2);
  infiltrations.reserve(static_cast<std::size_t>(count));
  utils::RepeatedWarning warnings("about soils.");
  for (int i = 0; i < count; ++i) {
    file.begin_record("soil class", i, count);
    const int id = file.read_integer("ID");
    const std::string type = file.read_word("type");
    if (type == "GreenAmpt") {
      infiltrations.push_back(read_green_ampt(file, path, id, warnings));
    } else if (type == "Horton") {
      infiltrations.push_back(read_horton(file, path, id, warnings));
    } else {
      std::cout << "Infiltration type not recognized. Type: " << type << std::endl;
      utils::stop(-1);
    }
  }
}
