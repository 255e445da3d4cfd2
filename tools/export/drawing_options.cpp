#include "export/drawing_options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "export/common_options.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

/// An option whose text `take` understands; of another one it is told what is expected.
void add_understood(CLI::App& command, const std::string& name, const std::string& meaning,
                    const std::string& type, const std::string& expected,
                    const std::function<bool(const std::string&)>& take) {
  command
      .add_option_function<std::string>(
          name, [](const std::string&) {}, meaning)
      ->check([take, expected](const std::string& text) {
        return take(text) ? "" : "found \"" + text + "\", expected " + expected;
      })
      ->type_name(type);
}

/// The finite numbers that a text separates by a sign; none if it is something else.
std::optional<std::vector<double>> numbers_of(const std::string& text, char separator) {
  std::vector<double> numbers;
  std::istringstream parts(text + separator);
  for (std::string part; std::getline(parts, part, separator);) {
    const std::optional<double> number = utils::parse_finite_number(part);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
  }
  return numbers;
}

bool increases(const std::vector<double>& numbers) {
  return std::adjacent_find(numbers.begin(), numbers.end(),
                            [](double a, double b) { return !(a < b); }) == numbers.end();
}

bool take_extent(const std::string& text, DrawingStyle& style) {
  const auto corners = numbers_of(text, ',');
  if (!corners || corners->size() != 4) return false;
  const Extent extent = {(*corners)[0], (*corners)[2], (*corners)[1], (*corners)[3]};
  style.extent = extent;
  return extent.west < extent.east && extent.south < extent.north;
}

bool take_range(const std::string& text, DrawingStyle& style) {
  const auto ends = numbers_of(text, ':');
  if (!ends || ends->size() != 2) return false;
  style.range = {(*ends)[0], (*ends)[1]};
  return increases(*ends);
}

bool take_classes(const std::string& text, DrawingStyle& style) {
  style.has_logarithmic_classes = text == "log";
  if (style.has_logarithmic_classes) return true;
  const auto bounds = numbers_of(text, ',');
  if (bounds) style.classes = *bounds;
  return bounds && increases(*bounds);
}

}  // namespace

void add_map_options(CLI::App& command, DrawingStyle& style) {
  command.add_option("--threshold", style.dry_depth,
                     "Cells no deeper than this are drawn dry, m (the case's zero depth)");
  add_understood(command, "--extent", "What maps show, m (all of the mesh)", "X0,Y0,X1,Y1",
                 "its south-western and north-eastern corner, as in 0,0,100,50",
                 [&style](const std::string& text) { return take_extent(text, style); });
  command.add_option("--dpi", style.dpi, "Pixels per inch")
      ->check(CLI::Range(30, 1200))
      ->capture_default_str();
  command.add_flag_callback(
      "--no-gauges", [&style] { style.has_places = false; },
      "Maps without the gauges and the sections");
  add_crs_option(command, style.crs);
}

void add_colour_options(CLI::App& command, DrawingStyle& style) {
  add_understood(command, "--range", "Values between which the colours change, in their unit",
                 "MIN:MAX", "two numbers that increase, as in 0:2.5",
                 [&style](const std::string& text) { return take_range(text, style); });
  add_understood(command, "--classes",
                 "Bounds of classes for the map of a field, increasing, in its unit: each class "
                 "has one colour; log: 1, 2 and 5 times powers of ten",
                 "log|B1,B2,...", "log, or bounds that increase, as in 0.3,0.6,1.2",
                 [&style](const std::string& text) { return take_classes(text, style); });
}

}  // namespace exports
