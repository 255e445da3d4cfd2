// A NetCDF file to read, of any version of the format.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mesh_import {

/// Every function throws tools::Error, with the file and the variable, where the library fails.
class NetcdfInput {
 public:
  explicit NetcdfInput(const std::string& path);
  ~NetcdfInput();
  NetcdfInput(const NetcdfInput&) = delete;
  NetcdfInput& operator=(const NetcdfInput&) = delete;

  const std::string& format() const { return format_; }  // for the user: "NetCDF-4"
  /// In their order; those of groups below the first one are left out.
  const std::vector<std::string>& variables() const { return variables_; }
  bool has(const std::string& variable) const;
  std::vector<std::string> dimensions(const std::string& variable) const;
  std::vector<std::size_t> shape(const std::string& variable) const;
  /// An attribute that is a text; empty without one.
  std::string text(const std::string& variable, const std::string& attribute) const;
  /// Whether an attribute is there, and one number.
  bool has_number(const std::string& variable, const std::string& attribute) const;
  /// An attribute that must be a number, if there is one.
  std::optional<double> number(const std::string& variable, const std::string& attribute) const;
  /// All values, the last dimension first: unpacked, and no numbers where the file has none.
  std::vector<double> values(const std::string& variable) const;

  [[noreturn]] void refuse(const std::string& variable, const std::string& fault) const;

 private:
  int number_of(const std::string& variable) const;
  double fill_value(int variable, const std::string& name) const;
  void check(int status, const std::string& variable) const;

  std::string path_, format_;
  int id_ = -1;
  std::vector<std::string> variables_;
};

}  // namespace mesh_import
