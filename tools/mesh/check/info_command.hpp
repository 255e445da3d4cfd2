// The command `info`.
#pragma once

#include <CLI/CLI.hpp>

namespace tools::check {

/// Adds `info CASE [--json]`.
void add_info_command(CLI::App& app);

}  // namespace tools::check
