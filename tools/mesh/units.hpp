// Numbers with units, as users write them on the command line and in the titles of columns.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace mesh_import {

enum class Quantity { time, length, unit_discharge, discharge, rain };

struct Unit {
  Quantity quantity;
  double in_si;  // how many s, m, m2/s, m3/s or m/s it is
};

/// The unit that a text names, as "h", "m3/s", "m³/s" or "mm/h" do; none for anything else.
std::optional<Unit> parse_unit(std::string_view text);

/// A finite number and the text behind it, without the blanks around.
struct Measured {
  double value;
  std::string unit;
};

/// "-40m3/s" or "2 h"; a number alone has an empty unit. None where no number comes first.
std::optional<Measured> parse_measured(std::string_view text);

/// A duration in s: a number of seconds, or a number and s, min, h or d; none for anything else.
std::optional<double> parse_duration(std::string_view text);

}  // namespace mesh_import
