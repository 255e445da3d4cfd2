// The command `import`: from a mesh and terrain to a case.
#pragma once

namespace CLI {
class App;
}

void add_import_command(CLI::App& app);
