// File names, input files, and the lines that go to the log.
#pragma once

#include <fstream>
#include <string>

#include "utils/Console.hpp"

namespace utils {

/// Opens a file for reading; ends the run with a message if that is impossible.
std::ifstream open_input_file(const std::string& name);

/// Tells a file from all others, whatever name leads to it; empty if there is none.
std::string identity_of_file(const std::string& name);
/// Remembers a file that the program reads, by whatever means.
void note_input_file(const std::string& name);
/// Whether the name leads to a file that was opened for reading, or noted.
bool is_input_file(const std::string& name);

/// The name by which this process, and only it, knows an open file.
std::string name_of_descriptor(int descriptor);
/// A name under which what a file holds can be read again and again: its own, or for a pipe that of
/// a copy, which goes with the process.
std::string readable_again(const std::string& name);

/// The part of a name before its last "."; the whole name without one.
std::string remove_extension(const std::string& name);
/// The part of a name after its last "."; empty without one.
std::string get_extension(const std::string& name);
/// The part of a name before its last "/" or "\"; the whole name without one.
std::string get_path(const std::string& name);
/// Renames out.txt to out_old.txt, keeping an earlier result; a failure is ignored.
void rename_old_file(const std::string& name);

/// Writes a message, which carries its own line end, to the console, unless that is muted, and to
/// the log.
void write_and_display(std::ostream& log, Console& console, const std::string& message);
/// Writes the line that separates the sections of the log.
void print_delimitator(std::ostream& log);

}  // namespace utils
