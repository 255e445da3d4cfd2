// The command `check`.
#pragma once

namespace CLI {
class App;
}

namespace tools::check {

/// Adds `check CASE [--json] [--quick]`.
void add_check_command(CLI::App& app);

}  // namespace tools::check
