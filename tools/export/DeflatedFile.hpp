// A NetCDF-4 file, deflated, through netCDF-C.
#pragma once

#include <string>

#include "ugrid/DataFile.hpp"
#include "ugrid/Definitions.hpp"

namespace exports {

/// What the library refuses is an error with the file's name. Without the library every file is
/// refused.
class DeflatedFile : public ugrid::DataFile {
 public:
  /// Creates the file `part`, which will be called `name`.
  DeflatedFile(const std::string& part, const std::string& name,
               const ugrid::Definitions& definitions);
  ~DeflatedFile() override;
  DeflatedFile(const DeflatedFile&) = delete;
  DeflatedFile& operator=(const DeflatedFile&) = delete;

  void put(std::size_t variable, std::size_t record, std::span<const int> values) override;
  void put(std::size_t variable, std::size_t record, std::span<const float> values) override;
  void put(std::size_t variable, std::size_t record, std::span<const double> values) override;
  void put(std::size_t variable, std::string_view characters) override;
  void close();

 private:
  void define(const ugrid::Variable& variable);
  void deflate(const ugrid::Variable& variable, int number);
  void add(int variable, const ugrid::Attribute& attribute);
  template <class Value, class Put>
  void put_record(std::size_t variable, std::size_t record, std::span<const Value> values,
                  const Put& put);
  void check(int status) const;

  std::string name_;
  ugrid::Definitions definitions_;
  int id_ = 0;
  bool is_open_ = false;
};

}  // namespace exports
