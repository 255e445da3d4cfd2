// The command `info`.
#pragma once

namespace CLI {
class App;
}

namespace tools::check {

/// Adds `info CASE [--json]`.
void add_info_command(CLI::App& app);

}  // namespace tools::check
