// Options that commands of quillmere-export share.
#pragma once

#include <optional>
#include <string>

#include "export/CaseFiles.hpp"
#include "export/crs.hpp"

namespace CLI {
class App;
}

namespace exports {

/// A command with its one argument, the case.
CLI::App& add_command(CLI::App& app, const char* name, const char* summary, std::string& case_name);

void add_crs_option(CLI::App& command, std::optional<Crs>& crs);
/// That of the case, where the option was not given.
void take_crs_of(const CaseFiles& files, std::optional<Crs>& crs);

/// Prints the name of a file that has been written.
void tell(const std::string& output);

}  // namespace exports
