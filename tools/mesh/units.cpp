#include "mesh/units.hpp"

#include "mesh/small_letters.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

struct NamedUnit {
  const char* name;
  Unit unit;
};

constexpr NamedUnit units[] = {
    {"s", {Quantity::time, 1.0}},
    {"sec", {Quantity::time, 1.0}},
    {"seconds", {Quantity::time, 1.0}},
    {"min", {Quantity::time, 60.0}},
    {"minutes", {Quantity::time, 60.0}},
    {"h", {Quantity::time, 3600.0}},
    {"hours", {Quantity::time, 3600.0}},
    {"d", {Quantity::time, 86400.0}},
    {"days", {Quantity::time, 86400.0}},
    {"m", {Quantity::length, 1.0}},
    {"m2/s", {Quantity::unit_discharge, 1.0}},
    {"m2s", {Quantity::unit_discharge, 1.0}},
    {"m3/s", {Quantity::discharge, 1.0}},
    {"m3s", {Quantity::discharge, 1.0}},
    {"l/s", {Quantity::discharge, 1e-3}},
    {"mm/h", {Quantity::rain, 1e-3 / 3600.0}},
};

/// In small letters, with plain digits for raised ones, and without the signs of powers.
std::string plain(std::string_view text) {
  std::string word;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view pair = text.substr(i, 2);
    if (pair == "\xC2\xB2" || pair == "\xC2\xB3") {  // raised 2 and 3
      word += pair == "\xC2\xB2" ? '2' : '3';
      ++i;
    } else if (text[i] != '^' && text[i] != ' ') {
      word += text[i];
    }
  }
  return small_letters(word);
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

}  // namespace

std::optional<Unit> parse_unit(std::string_view text) {
  const std::string name = plain(text);
  for (const NamedUnit& unit : units) {
    if (name == unit.name) return unit.unit;
  }
  return std::nullopt;
}

std::optional<Measured> parse_measured(std::string_view text) {
  text = trimmed(text);
  for (std::size_t n = text.size(); n > 0; --n) {
    if (const auto value = utils::parse_finite_number(text.substr(0, n))) {
      return Measured{*value, std::string(trimmed(text.substr(n)))};
    }
  }
  return std::nullopt;
}

std::optional<double> parse_duration(std::string_view text) {
  const auto measured = parse_measured(text);
  if (!measured) return std::nullopt;
  if (measured->unit.empty()) return measured->value;
  const auto unit = parse_unit(measured->unit);
  if (!unit || unit->quantity != Quantity::time) return std::nullopt;
  return measured->value * unit->in_si;
}

}  // namespace mesh_import
