#include "ugrid/ClassicLayout.hpp"

#include <stdexcept>

namespace ugrid {

namespace {

// Tags of the parts of a header, and of the types of values.
constexpr std::uint32_t dimensions_tag = 10, variables_tag = 11, attributes_tag = 12;
constexpr std::uint32_t characters = 2, integers = 4, floats = 5, doubles = 6;

std::uint32_t type_number(Type type) {
  switch (type) {
    case Type::character:
      return characters;
    case Type::integer:
      return integers;
    case Type::single_precision:
      return floats;
    case Type::double_precision:
      return doubles;
  }
  return 0;
}

/// Characters are filled up to a multiple of four.
std::uint64_t bytes_of(const Definitions& definitions, const Variable& variable) {
  if (variable.type == Type::character) return (definitions.n_values(variable) + 3) / 4 * 4;
  const std::uint64_t of_a_value = variable.type == Type::double_precision ? 8 : 4;
  return of_a_value * definitions.n_values(variable);
}

/// Writes the parts of a header one after the other.
class HeaderText {
 public:
  void number(std::size_t value) { append(static_cast<std::uint32_t>(value)); }
  void place(std::uint64_t value) { append(value); }
  /// A list that is empty has neither a tag nor a length.
  void list(std::uint32_t tag, std::size_t length) {
    number(length > 0 ? tag : 0);
    number(length);
  }
  void name(const std::string& name) {
    number(name.size());
    padded(name);
  }
  void attributes(const std::vector<Attribute>& attributes) {
    list(attributes_tag, attributes.size());
    for (const Attribute& attribute : attributes) {
      name(attribute.name);
      std::visit([this](const auto& value) { add_value(value); }, attribute.value);
    }
  }
  std::string& text() { return text_; }

 private:
  void padded(const std::string& bytes) {
    text_ += bytes;
    text_.append((4 - bytes.size() % 4) % 4, '\0');
  }
  template <class Bits>
  void append(Bits bits) {
    const Bits stored = as_in_file(bits);
    text_.append(reinterpret_cast<const char*>(&stored), sizeof stored);
  }
  void add_value(const std::string& text) {
    number(characters);
    number(text.size());
    padded(text);
  }
  void add_value(int value) {
    number(integers);
    number(1);
    append(static_cast<std::uint32_t>(value));
  }
  void add_value(float value) {
    number(floats);
    number(1);
    append(std::bit_cast<std::uint32_t>(value));
  }
  void add_value(double value) {
    number(doubles);
    number(1);
    append(std::bit_cast<std::uint64_t>(value));
  }

  std::string text_;
};

std::string header_of(const Definitions& definitions, const std::vector<std::uint64_t>& places) {
  HeaderText header;
  header.text() = std::string("CDF") + '\2';
  header.number(0);  // records
  header.list(dimensions_tag, definitions.dimensions.size());
  for (const Dimension& dimension : definitions.dimensions) {
    header.name(dimension.name);
    header.number(dimension.length);
  }
  header.attributes(definitions.attributes);
  header.list(variables_tag, definitions.variables.size());
  for (std::size_t k = 0; k < definitions.variables.size(); ++k) {
    const Variable& variable = definitions.variables[k];
    header.name(variable.name);
    header.number(variable.dimensions.size());
    for (const std::size_t dimension : variable.dimensions) header.number(dimension);
    header.attributes(variable.attributes);
    header.number(type_number(variable.type));
    header.number(bytes_of(definitions, variable));
    header.place(places[k]);
  }
  return header.text();
}

void require_size(const Definitions& definitions, const Variable& variable) {
  constexpr std::uint64_t most = 0xfffffffc;
  if (bytes_of(definitions, variable) <= most) return;
  throw std::length_error("the mesh is too large for the format: the variable " + variable.name +
                          " would have " + std::to_string(bytes_of(definitions, variable)) +
                          " bytes, of at most " + std::to_string(most));
}

}  // namespace

ClassicLayout classic_layout(const Definitions& definitions) {
  ClassicLayout layout;
  layout.places.resize(definitions.variables.size());
  std::uint64_t end = header_of(definitions, layout.places).size();
  const auto place_those = [&](bool that_grow) {
    for (std::size_t k = 0; k < layout.places.size(); ++k) {
      const Variable& variable = definitions.variables[k];
      if (definitions.grows(variable) != that_grow) continue;
      require_size(definitions, variable);
      layout.places[k] = end;
      end += bytes_of(definitions, variable);
    }
  };
  place_those(false);
  layout.begin_of_records = end;
  place_those(true);
  layout.record_size = end - layout.begin_of_records;
  for (const Variable& variable : definitions.variables) {
    layout.grows.push_back(definitions.grows(variable));
  }
  layout.header = header_of(definitions, layout.places);
  return layout;
}

}  // namespace ugrid
