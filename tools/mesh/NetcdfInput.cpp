#include "mesh/NetcdfInput.hpp"

#include <netcdf.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "support/Error.hpp"

namespace mesh_import {

namespace {

constexpr char netcdf4[] = "NetCDF-4";

}  // namespace

NetcdfInput::NetcdfInput(const std::string& path) : path_(path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw tools::Error(path + ": the file cannot be opened.");
  }
  const int status = nc_open(path.c_str(), NC_NOWRITE, &id_);
  if (status != NC_NOERR) {
    throw tools::Error(path + ": found no NetCDF file (" + nc_strerror(status) +
                       "); expected one.");
  }
  int format = 0, n_variables = 0;
  check(nc_inq_format(id_, &format), "");
  format_ = format == NC_FORMAT_NETCDF4 || format == NC_FORMAT_NETCDF4_CLASSIC ? netcdf4
                                                                               : "classic NetCDF";
  check(nc_inq_nvars(id_, &n_variables), "");
  for (int i = 0; i < n_variables; ++i) {
    char name[NC_MAX_NAME + 1] = {};
    check(nc_inq_varname(id_, i, name), "");
    variables_.emplace_back(name);
  }
}

NetcdfInput::~NetcdfInput() { nc_close(id_); }

bool NetcdfInput::has(const std::string& variable) const {
  return std::find(variables_.begin(), variables_.end(), variable) != variables_.end();
}

int NetcdfInput::number_of(const std::string& variable) const {
  const auto found = std::find(variables_.begin(), variables_.end(), variable);
  if (found == variables_.end()) refuse(variable, "the file has no such variable");
  return static_cast<int>(found - variables_.begin());
}

std::vector<std::string> NetcdfInput::dimensions(const std::string& variable) const {
  const int id = number_of(variable);
  int n = 0, numbers[NC_MAX_VAR_DIMS];
  check(nc_inq_varndims(id_, id, &n), variable);
  check(nc_inq_vardimid(id_, id, numbers), variable);
  std::vector<std::string> names;
  for (int i = 0; i < n; ++i) {
    char name[NC_MAX_NAME + 1] = {};
    check(nc_inq_dimname(id_, numbers[i], name), variable);
    names.emplace_back(name);
  }
  return names;
}

std::vector<std::size_t> NetcdfInput::shape(const std::string& variable) const {
  std::vector<std::size_t> lengths;
  for (const std::string& name : dimensions(variable)) {
    int dimension = 0;
    std::size_t length = 0;
    check(nc_inq_dimid(id_, name.c_str(), &dimension), variable);
    check(nc_inq_dimlen(id_, dimension, &length), variable);
    lengths.push_back(length);
  }
  return lengths;
}

std::string NetcdfInput::text(const std::string& variable, const std::string& attribute) const {
  const int id = number_of(variable);
  nc_type type = NC_NAT;
  std::size_t length = 0;
  if (nc_inq_att(id_, id, attribute.c_str(), &type, &length) != NC_NOERR) return "";
  if (type == NC_STRING && length == 1) {
    char* words = nullptr;
    check(nc_get_att_string(id_, id, attribute.c_str(), &words), variable);
    const std::string text = words != nullptr ? words : "";
    nc_free_string(1, &words);
    return text;
  }
  if (type != NC_CHAR) return "";
  std::string text(length, '\0');
  check(nc_get_att_text(id_, id, attribute.c_str(), text.data()), variable);
  return text.substr(0, text.find('\0'));
}

bool NetcdfInput::has_number(const std::string& variable, const std::string& attribute) const {
  const int id = number_of(variable);
  nc_type type = NC_NAT;
  std::size_t length = 0;
  if (nc_inq_att(id_, id, attribute.c_str(), &type, &length) != NC_NOERR) return false;
  return length == 1 && type != NC_CHAR && type < NC_STRING;
}

std::optional<double> NetcdfInput::number(const std::string& variable,
                                          const std::string& attribute) const {
  const int id = number_of(variable);
  nc_type type = NC_NAT;
  std::size_t length = 0;
  if (nc_inq_att(id_, id, attribute.c_str(), &type, &length) != NC_NOERR) return std::nullopt;
  double value = 0.0;
  if (length != 1 || nc_get_att_double(id_, id, attribute.c_str(), &value) != NC_NOERR) {
    refuse(variable, "its attribute " + attribute + " is no number");
  }
  return value;
}

double NetcdfInput::fill_value(int variable, const std::string& name) const {
  if (const auto given = number(name, "_FillValue")) return *given;
  nc_type type = NC_NAT;
  check(nc_inq_vartype(id_, variable, &type), name);
  switch (type) {
    case NC_INT:
      return NC_FILL_INT;
    case NC_INT64:
      return static_cast<double>(NC_FILL_INT64);
    case NC_FLOAT:
      return static_cast<double>(NC_FILL_FLOAT);
    case NC_DOUBLE:
      return NC_FILL_DOUBLE;
    default:
      return std::numeric_limits<double>::quiet_NaN();
  }
}

std::vector<double> NetcdfInput::values(const std::string& variable) const {
  const int id = number_of(variable);
  // A damaged file announces more than any file of its size can hold. Deflate gives up to 1032
  // bytes for one (zlib, Technical Details).
  const double most_values_per_byte = format_ == netcdf4 ? 1032.0 : 1.0;
  double n = 1.0;
  for (const std::size_t length : shape(variable)) n *= static_cast<double>(length);
  if (n > most_values_per_byte * static_cast<double>(std::filesystem::file_size(path_))) {
    refuse(variable, "it has more values than the file can hold");
  }
  std::vector<double> values(static_cast<std::size_t>(n));
  if (values.empty()) return values;
  check(nc_get_var_double(id_, id, values.data()), variable);
  const double fill = fill_value(id, variable);
  const double scale = number(variable, "scale_factor").value_or(1.0);
  const double offset = number(variable, "add_offset").value_or(0.0);
  for (double& value : values) {
    value = value == fill ? std::numeric_limits<double>::quiet_NaN() : value * scale + offset;
  }
  return values;
}

void NetcdfInput::check(int status, const std::string& variable) const {
  if (status != NC_NOERR) refuse(variable, nc_strerror(status));
}

void NetcdfInput::refuse(const std::string& variable, const std::string& fault) const {
  throw tools::Error(path_ + (variable.empty() ? "" : ", variable " + variable) + ": " + fault +
                     "; expected a mesh by the conventions of UGRID.");
}

}  // namespace mesh_import
