#include "mesh/make_command.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "mesh/import_case.hpp"
#include "mesh/make_mesh.hpp"
#include "mesh/make_options.hpp"

namespace {

constexpr char make_examples[] = R"(Examples:
  quillmere-mesh make outline.geojson town --size 10 --holes buildings.gpkg \
      --breaklines dikes.geojson --terrain dem.tif --friction 0.035 \
      --boundaries open.geojson --level 101.5
  quillmere-mesh make valley.gpkg valley --size 20 --refine village.gpkg --terrain dem.tif
  cd town && quillmere -f data.json

)";

void make(const mesh_import::MakeOptions& options) {
  mesh_import::check_make_usage(options);
  mesh_import::import_case(
      options.of_case,
      [&options](mesh_import::ImportOptions& of_case, std::ostream& out) {
        return mesh_import::make_mesh(options, of_case, out);
      },
      std::cout);
}

}  // namespace

void add_make_command(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "make", "Makes a case folder from the outline of an area, which it meshes.");
  command->formatter_fn([](const CLI::App* self, std::string name, CLI::AppFormatMode mode) {
    return make_examples + CLI::Formatter().make_help(self, std::move(name), mode);
  });
  const auto options = std::make_shared<mesh_import::MakeOptions>();
  mesh_import::add_make_options(*command, *options);
  command->callback([options] { make(*options); });
}
