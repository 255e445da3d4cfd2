// The command `make`: from an outline and terrain to a case.
#pragma once

#include <CLI/CLI.hpp>

void add_make_command(CLI::App& app);
