// The command `info`.
#pragma once

#include <CLI/CLI.hpp>

/// Adds `info CASE [--json]`.
void add_info_command(CLI::App& app);
