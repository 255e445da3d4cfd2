#include "export/DeflatedFile.hpp"

#include <netcdf.h>

#include <algorithm>
#include <vector>

#include "support/Error.hpp"

namespace exports {

namespace {

nc_type type_of(ugrid::Type type) {
  switch (type) {
    case ugrid::Type::character:
      return NC_CHAR;
    case ugrid::Type::integer:
      return NC_INT;
    case ugrid::Type::single_precision:
      return NC_FLOAT;
    case ugrid::Type::double_precision:
      return NC_DOUBLE;
  }
  return NC_NAT;
}

}  // namespace

DeflatedFile::DeflatedFile(const std::string& part, const std::string& name,
                           const ugrid::Definitions& definitions)
    : name_(name), definitions_(definitions) {
  check(nc_create(part.c_str(), NC_CLOBBER | NC_NETCDF4 | NC_CLASSIC_MODEL, &id_));
  is_open_ = true;
  // Every value is written, so that no fill values are needed.
  check(nc_set_fill(id_, NC_NOFILL, nullptr));
  for (const ugrid::Dimension& dimension : definitions.dimensions) {
    int number = 0;  // they are numbered in their order, as are the variables
    check(nc_def_dim(id_, dimension.name.c_str(),
                     dimension.length == 0 ? NC_UNLIMITED : dimension.length, &number));
  }
  for (const ugrid::Variable& variable : definitions.variables) define(variable);
  for (const ugrid::Attribute& attribute : definitions.attributes) add(NC_GLOBAL, attribute);
  check(nc_enddef(id_));
}

DeflatedFile::~DeflatedFile() {
  if (is_open_) nc_abort(id_);
}

void DeflatedFile::define(const ugrid::Variable& variable) {
  const std::vector<int> dimensions(variable.dimensions.begin(), variable.dimensions.end());
  int number = 0;
  check(nc_def_var(id_, variable.name.c_str(), type_of(variable.type),
                   static_cast<int>(dimensions.size()), dimensions.data(), &number));
  for (const ugrid::Attribute& attribute : variable.attributes) add(number, attribute);
  if (definitions_.n_values(variable) > 1) deflate(variable, number);
}

void DeflatedFile::deflate(const ugrid::Variable& variable, int number) {
  constexpr std::size_t most = std::size_t{1} << 28;  // a chunk may have 4 GiB
  std::vector<std::size_t> chunk;
  for (const std::size_t dimension : variable.dimensions) {
    chunk.push_back(std::clamp<std::size_t>(definitions_.dimensions[dimension].length, 1, most));
  }
  constexpr int shuffles = 1, deflates = 1, level = 1;
  check(nc_def_var_chunking(id_, number, NC_CHUNKED, chunk.data()));
  check(nc_def_var_deflate(id_, number, shuffles, deflates, level));
  // A chunk is written once and whole, so that no cache of chunks is needed.
  check(nc_set_var_chunk_cache(id_, number, 0, 0, 0.0f));
}

void DeflatedFile::add(int variable, const ugrid::Attribute& attribute) {
  const char* const name = attribute.name.c_str();
  const auto add_number = [&](nc_type type, const auto* number) {
    check(nc_put_att(id_, variable, name, type, 1, number));
  };
  if (const auto* const text = std::get_if<std::string>(&attribute.value)) {
    check(nc_put_att_text(id_, variable, name, text->size(), text->c_str()));
  }
  if (const auto* const number = std::get_if<int>(&attribute.value)) add_number(NC_INT, number);
  if (const auto* const number = std::get_if<float>(&attribute.value)) add_number(NC_FLOAT, number);
  if (const auto* const number = std::get_if<double>(&attribute.value)) {
    add_number(NC_DOUBLE, number);
  }
}

template <class Value, class Put>
void DeflatedFile::put_record(std::size_t variable, std::size_t record,
                              std::span<const Value> values, const Put& put) {
  const ugrid::Variable& defined = definitions_.variables[variable];
  std::vector<std::size_t> start, count;
  for (const std::size_t dimension : defined.dimensions) {
    const std::size_t length = definitions_.dimensions[dimension].length;
    start.push_back(length == 0 ? record : 0);
    count.push_back(length == 0 ? 1 : length);
  }
  check(put(id_, static_cast<int>(variable), start.data(), count.data(), values.data()));
}

void DeflatedFile::put(std::size_t variable, std::size_t record, std::span<const int> values) {
  put_record(variable, record, values, nc_put_vara_int);
}
void DeflatedFile::put(std::size_t variable, std::size_t record, std::span<const float> values) {
  put_record(variable, record, values, nc_put_vara_float);
}
void DeflatedFile::put(std::size_t variable, std::size_t record, std::span<const double> values) {
  put_record(variable, record, values, nc_put_vara_double);
}

void DeflatedFile::put(std::size_t variable, std::string_view characters) {
  check(nc_put_var_text(id_, static_cast<int>(variable), characters.data()));
}

void DeflatedFile::close() {
  is_open_ = false;
  check(nc_close(id_));
}

void DeflatedFile::check(int status) const {
  if (status == NC_NOERR) return;
  throw tools::Error("The file " + name_ + " couldn't be written: " + nc_strerror(status) + ".");
}

}  // namespace exports
