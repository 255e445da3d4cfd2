// The command `set`: changes values of a case without a new import.
#pragma once

namespace CLI {
class App;
}

void add_set_command(CLI::App& app);
