// What the companion programs share: commands, exit statuses, and how an error is said.
#pragma once

#include <CLI/CLI.hpp>

#include "support/Error.hpp"

namespace tools {

/// A command line program with subcommands. Every subcommand runs from its callback.
class Tool {
 public:
  /// `examples` opens the help text. From now on, what the simulator's readers refuse is an Error.
  Tool(const char* name, const char* summary, const char* examples);

  CLI::App& app() { return app_; }
  /// Parses and runs: 0, or 1 after an error, or 2 for wrong usage. Messages go to standard error.
  int run(int argc, char** argv);

 private:
  int parse_and_run(int argc, char** argv);

  CLI::App app_;
};

}  // namespace tools
