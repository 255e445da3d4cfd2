// The JSON schema of the data file (draft-07), for editors and for programs that write data files.
#pragma once

#include <string>

namespace cases {

/// Every key of the table with its type, its meaning, its default and when it is required. A name
/// that is no key is refused, although runs ignore it: it is misspelt more often than not.
std::string data_file_schema();

}  // namespace cases
