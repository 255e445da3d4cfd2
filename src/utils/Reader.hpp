// An open input file and its name.
#pragma once

#include <fstream>
#include <string>

namespace utils {

class Reader {
 public:
  /// Opens the file; ends the run with a message if that is impossible.
  explicit Reader(const std::string& name);
  ~Reader();

  void close();

 protected:
  std::ifstream stream_;
  std::string name_;
};

}  // namespace utils
