// The command `make`: from an outline and terrain to a case.
#pragma once

namespace CLI {
class App;
}

void add_make_command(CLI::App& app);
