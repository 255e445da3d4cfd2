// quillmere-export: turns the results of a run into the files that other programs read.
#include "export/commands.hpp"
#include "support/Tool.hpp"

int main(int argc, char** argv) {
  tools::Tool tool(
      "quillmere-export",
      "Turns the results of a run into files for other programs, and into pictures.",
      "  quillmere-export netcdf my_case --crs EPSG:32632       a mesh layer for QGIS\n"
      "  quillmere-export vtu my_case                           for ParaView\n"
      "  quillmere-export geotiff my_case --field max_depth --resolution 5\n"
      "  quillmere-export csv my_case                           gauges and sections\n"
      "  quillmere-export plot my_case --field velocity --time 3600\n"
      "  quillmere-export plot my_case --all                    a folder of pictures\n"
      "  quillmere-export report my_case                        a report in one HTML file\n"
      "\n"
      "Files go to my_case/export unless --output names another place; their names\n"
      "are printed. \"quillmere-export COMMAND --help\" lists the options.\n");
  exports::add_netcdf_command(tool.app());
  exports::add_vtu_command(tool.app());
  exports::add_geotiff_command(tool.app());
  exports::add_csv_command(tool.app());
  exports::add_plot_command(tool.app());
  exports::add_report_command(tool.app());
  return tool.run(argc, argv);
}
