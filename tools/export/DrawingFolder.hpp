// The folder in which the script that draws works.
#pragma once

#include <fstream>
#include <string>

#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"

namespace exports {

/// A folder that lives as long as the drawing: the job and the arrays that the script reads, and
/// what it makes of them.
class DrawingFolder {
 public:
  /// An empty "matplotlibrc" in the working folder of the script is read in place of any other one.
  DrawingFolder() { save("matplotlibrc", std::string()); }

  std::string path(const std::string& name) const { return folder_.file(name); }
  template <class T>
  void save(const std::string& name, const T& values) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(values.data()),
               static_cast<std::streamsize>(values.size() * sizeof(values[0])));
    if (!file.flush()) {
      throw tools::Error("The file " + path(name) + " couldn't be written (is the disk full?).");
    }
  }
  /// Runs the script, which reads job.json. Refuses where it, or Python, is not there, and where it
  /// fails.
  void run_script() const;
  /// Copies a file that was drawn: one of the user's is only ever replaced by a complete one.
  void put_in_place(const std::string& name, const std::string& output) const;

 private:
  tools::TemporaryFolder folder_;
};

}  // namespace exports
