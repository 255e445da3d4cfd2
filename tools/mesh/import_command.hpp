// The command `import`: from a mesh and terrain to a case.
#pragma once

#include <CLI/CLI.hpp>

void add_import_command(CLI::App& app);
