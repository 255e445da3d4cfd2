// A NetCDF file under way, through netCDF-C.
#pragma once

#include <netcdf.h>

#include <cstddef>
#include <string>
#include <vector>

#include "support/Error.hpp"

namespace exports {

/// What the library refuses is an error with the file's name. Texts are characters, never strings,
/// which older readers do not know.
class NetcdfFile {
 public:
  /// Creates the file `part`, which will be called `name`.
  NetcdfFile(const std::string& part, const std::string& name, bool is_compressed)
      : name_(name), is_compressed_(is_compressed) {
    // 64-bit offsets are read everywhere; with them a variable may hold 4 GiB in each record.
    const int format = is_compressed ? NC_NETCDF4 | NC_CLASSIC_MODEL : NC_64BIT_OFFSET;
    check(nc_create(part.c_str(), NC_CLOBBER | format, &id_));
    is_open_ = true;
    // Every value is written, so that no fill values are needed.
    check(nc_set_fill(id_, NC_NOFILL, nullptr));
  }
  ~NetcdfFile() {
    if (is_open_) nc_abort(id_);
  }
  NetcdfFile(const NetcdfFile&) = delete;
  NetcdfFile& operator=(const NetcdfFile&) = delete;

  int add_dimension(const char* name, std::size_t length) {
    int dimension = 0;
    check(nc_def_dim(id_, name, length, &dimension));
    return dimension;
  }
  int add_variable(const std::string& name, nc_type type, const std::vector<int>& dimensions) {
    int variable = 0;
    check(nc_def_var(id_, name.c_str(), type, static_cast<int>(dimensions.size()),
                     dimensions.data(), &variable));
    return variable;
  }
  /// A variable of one value per cell, at each time if `dimensions` has two.
  void compress(int variable, const std::vector<int>& dimensions, std::size_t n_cells) {
    if (!is_compressed_) return;
    const std::vector<std::size_t> chunk =
        dimensions.size() == 2 ? std::vector<std::size_t>{1, n_cells} : std::vector{n_cells};
    check(nc_def_var_chunking(id_, variable, NC_CHUNKED, chunk.data()));
    check(nc_def_var_deflate(id_, variable, 1, 1, 1));
    // A chunk is written once and whole, so that no cache of chunks is needed.
    check(nc_set_var_chunk_cache(id_, variable, 0, 0, 0.0f));
  }
  void add_text(int variable, const char* name, const std::string& text) {
    check(nc_put_att_text(id_, variable, name, text.size(), text.c_str()));
  }
  void add_integer(int variable, const char* name, int value) {
    check(nc_put_att_int(id_, variable, name, NC_INT, 1, &value));
  }
  void add_number(int variable, const char* name, double value) {
    check(nc_put_att_double(id_, variable, name, NC_DOUBLE, 1, &value));
  }
  void add_fill_value(int variable, float value) {
    check(nc_put_att_float(id_, variable, "_FillValue", NC_FLOAT, 1, &value));
  }
  void end_definitions() { check(nc_enddef(id_)); }

  void put(int variable, const int* values) { check(nc_put_var_int(id_, variable, values)); }
  void put(int variable, const double* values) { check(nc_put_var_double(id_, variable, values)); }
  void put(int variable, const float* values) { check(nc_put_var_float(id_, variable, values)); }
  void put_record(int variable, std::size_t record, double value) {
    check(nc_put_var1_double(id_, variable, &record, &value));
  }
  void put_record(int variable, std::size_t record, const std::vector<float>& values) {
    const std::size_t start[] = {record, 0}, count[] = {1, values.size()};
    check(nc_put_vara_float(id_, variable, start, count, values.data()));
  }
  void close() {
    is_open_ = false;
    check(nc_close(id_));
  }

 private:
  void check(int status) const {
    if (status == NC_NOERR) return;
    throw tools::Error("The file " + name_ + " couldn't be written: " + nc_strerror(status) + ".");
  }

  std::string name_;
  bool is_compressed_;
  int id_ = 0;
  bool is_open_ = false;
};

}  // namespace exports
