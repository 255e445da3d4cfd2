// What a NetCDF file holds, but for the values: dimensions, variables and attributes, in the data
// model of classic files, which every version of the format has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace ugrid {

/// Texts are characters, never strings, which older readers do not know.
struct Attribute {
  std::string name;
  std::variant<std::string, int, float, double> value;
};

struct Dimension {
  std::string name;
  std::size_t length;  ///< 0: it grows, record by record; there is at most one such
};

enum class Type { character, integer, single_precision, double_precision };

struct Variable {
  std::string name;
  Type type;
  std::vector<std::size_t> dimensions;  ///< by their numbers; one that grows comes first
  std::vector<Attribute> attributes;
};

struct Definitions {
  std::vector<Dimension> dimensions;
  std::vector<Attribute> attributes;  ///< of the file
  std::vector<Variable> variables;

  /// Whether a variable has values in every record.
  bool grows(const Variable& variable) const {
    return !variable.dimensions.empty() && dimensions[variable.dimensions.front()].length == 0;
  }
  /// The number of its values, in each record if it grows.
  std::size_t n_values(const Variable& variable) const {
    std::size_t product = 1;
    for (const std::size_t dimension : variable.dimensions) {
      product *= std::max<std::size_t>(dimensions[dimension].length, 1);
    }
    return product;
  }
};

}  // namespace ugrid
