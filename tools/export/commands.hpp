// The commands of quillmere-export: their options, and what they call.
#pragma once

namespace CLI {
class App;
}

namespace exports {

void add_netcdf_command(CLI::App& app);
void add_vtu_command(CLI::App& app);
void add_geotiff_command(CLI::App& app);
void add_csv_command(CLI::App& app);
void add_plot_command(CLI::App& app);
void add_report_command(CLI::App& app);

}  // namespace exports
