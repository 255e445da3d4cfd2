// Reads a data file made of any bytes, and asks for everything that a run asks for.
#include <cstdint>
#include <exception>
#include <string>

#include "case/DataFileReader.hpp"
#include "fuzz/fuzzing.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

void ask_for_everything(const utils::DataFileReader& reader) {
  const auto ask = [&reader](auto... getters) {
    const auto ask_one = [&reader](auto getter) {
      try {
        (reader.*getter)();
      } catch (const std::exception&) {  // reported, and the end of a run
      }
    };
    (ask_one(getters), ...);
  };
  using Reader = utils::DataFileReader;
  ask(&Reader::get_simulation_name, &Reader::get_start_time, &Reader::get_end_time,
      &Reader::get_CFL, &Reader::get_nodes_file, &Reader::get_cells_file, &Reader::get_edges_file,
      &Reader::get_model_name, &Reader::get_flux_scheme_name, &Reader::get_zero_depth_value,
      &Reader::get_initial_hydrodynamic_conditions_file, &Reader::is_imposed_fixed_bed_level,
      &Reader::get_fixed_bed_level_file, &Reader::is_imposed_friction, &Reader::get_friction_file,
      &Reader::is_sediments, &Reader::get_sediments_level_file, &Reader::get_sediments_mean_grain,
      &Reader::get_sediments_density, &Reader::get_sediments_friction,
      &Reader::get_sediments_porosity, &Reader::is_rainfall, &Reader::get_rainfall_file,
      &Reader::get_hyetocells_file, &Reader::is_infiltration, &Reader::get_infiltration_file,
      &Reader::get_infiltracells_file, &Reader::is_initial_infiltration,
      &Reader::get_initial_infiltration_file, &Reader::is_extensions,
      &Reader::get_output_folder_path, &Reader::get_dt_enveloppe, &Reader::get_final_state_file,
      &Reader::is_maxima, &Reader::get_maxima_file, &Reader::get_arrival_depth,
      &Reader::is_pictures, &Reader::get_pictures_file, &Reader::is_gauges,
      &Reader::get_gauges_file, &Reader::is_discharge_check, &Reader::get_discharge_file,
      &Reader::key_uses);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzzing::start();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const support::TemporaryFolder folder;
  const std::string path =
      folder.write("data.json", std::string(reinterpret_cast<const char*>(bytes), size));
  try {
    ask_for_everything(utils::DataFileReader(path));
  } catch (const std::exception&) {
  } catch (const utils::FatalError&) {
  }
  return 0;
}
