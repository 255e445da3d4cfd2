#include "case/data_file_text.hpp"

#include <array>
#include <nlohmann/json.hpp>

#include "case/cell_files.hpp"
#include "case/keys.hpp"

namespace cases {

namespace {

/// Key by key in the order in which they shall stand there.
class Document {
 public:
  template <class T>
  void set(const Key& key, const T& value) {
    json_[Json::json_pointer("/" + std::string(key.path))] = value;
  }
  void set_empty(const Key& section) { set(section, Json::object()); }
  std::string text() const { return json_.dump(2) + "\n"; }

 private:
  using Json = nlohmann::ordered_json;
  Json json_;
};

/// Those of a section, in the order of the keys.
void set_cell_files(const Case& contents, std::string_view section, Document& data) {
  for (const Key& key : keys) {
    const CellFile* const file = key.section() == section ? cell_file(key) : nullptr;
    if (file != nullptr && file->is_in(contents.fields)) data.set(key, file->name);
  }
}

void set_model(const Case& contents, Document& data) {
  data.set(key("model/name"), contents.has_sediments ? sediment_model : water_model);
  data.set(key("model/flux scheme"), kind_of(contents.scheme).name);
  constexpr const Key& zero_depth = key("model/zero depth value");
  if (contents.zero_depth != default_number(zero_depth)) data.set(zero_depth, contents.zero_depth);
  set_cell_files(contents, "model/conditions", data);
  if (!contents.has_sediments) return;
  const SedimentParameters& sediment = contents.sediment;
  data.set(key("model/parameters/sediments mean grain diameter"), sediment.d50);
  data.set(key("model/parameters/sediments density"), sediment.density);
  data.set(key("model/parameters/sediments friction coefficient"), sediment.manning);
  data.set(key("model/parameters/sediments porosity"), sediment.porosity);
}

void set_sources(const Case& contents, Document& data) {
  data.set_empty(key("model/sources"));
  if (!contents.fields.rain.empty()) {
    data.set(key("model/sources/rainfall"), rain_file_name);
    data.set(key("model/sources/hyetocells"), hyetocells_file_name);
  }
  if (!contents.fields.soil.empty()) {
    data.set(key("model/sources/infiltration"), soils_file_name);
    data.set(key("model/sources/infiltracells"), soilcells_file_name);
  }
  set_cell_files(contents, "model/sources", data);
}

void set_outputs(const RunRequest& run, Document& data) {
  data.set(key("output/folder"), run.output_folder);
  data.set(key("output/time step enveloppe of results"), run.envelope_interval);
  if (run.final_state) data.set(key("output/final state"), *run.final_state);
  if (run.maxima) {
    data.set(key("output/maxima of flow/file"), run.maxima->result);
    data.set(key("output/maxima of flow/arrival depth"), run.maxima->arrival_depth);
  }
  if (run.snapshots) data.set(key("output/snapshots of flow"), snapshots_file_name);
  if (run.gauges) data.set(key("output/gauges"), gauges_file_name);
  if (run.sections) data.set(key("output/discharges"), sections_file_name);
}

}  // namespace

std::string data_file_text(const Case& contents, const RunRequest& run) {
  Document data;
  data.set(key("name"), run.name);
  data.set(key("t0"), contents.t_start);
  data.set(key("tend"), contents.t_end);
  data.set(key("CFL"), contents.cfl);
  if (run.epsg) data.set(key("crs"), "EPSG:" + std::to_string(*run.epsg));
  if (!run.epoch.empty()) data.set(key("epoch"), run.epoch);
  data.set(key("mesh/nodes"), nodes_file_name);
  data.set(key("mesh/cells"), cells_file_name);
  data.set(key("mesh/edges"), edges_file_name);
  if (run.origin) data.set(key("mesh/origin"), std::array{run.origin->x, run.origin->y});
  set_model(contents, data);
  set_sources(contents, data);
  set_outputs(run, data);
  return data.text();
}

}  // namespace cases
