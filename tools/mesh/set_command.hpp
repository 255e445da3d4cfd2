// The command `set`: changes values of a case without a new import.
#pragma once

#include <CLI/CLI.hpp>

void add_set_command(CLI::App& app);
