#include "mesh/raster.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>

#include "mesh/ForeignScanner.hpp"
#include "mesh/numbers.hpp"
#include "mesh/small_letters.hpp"
#include "support/Error.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

/// Barycentric coordinates and weights of the rule of degree five with seven points (Radon 1948).
struct QuadraturePoint {
  double a, b, c, weight;
};

std::vector<QuadraturePoint> seven_point_rule() {
  const double root = std::sqrt(15.0);
  std::vector<QuadraturePoint> rule{{1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 9.0 / 40.0}};
  for (const double sign : {-1.0, 1.0}) {
    const double s = (6.0 + sign * root) / 21.0;
    const double far = 1.0 - 2.0 * s;
    const double weight = (155.0 + sign * root) / 1200.0;
    rule.push_back({far, s, s, weight});
    rule.push_back({s, far, s, weight});
    rule.push_back({s, s, far, weight});
  }
  return rule;
}

}  // namespace

RasterData read_asc(const std::string& path) {
  ForeignScanner in(path);
  std::map<std::string, double> header;
  std::string first_value;
  while (!in.at_end()) {
    const std::string key = small_letters(in.word("header"));
    if (!std::isalpha(static_cast<unsigned char>(key[0])) || key == "nan") {
      first_value = key;
      break;
    }
    const bool is_known = key == "ncols" || key == "nrows" || key == "xllcorner" ||
                          key == "xllcenter" || key == "yllcorner" || key == "yllcenter" ||
                          key == "cellsize" || key == "dx" || key == "dy" || key == "nodata_value";
    if (!is_known) {
      in.refuse("header", "ncols, nrows, xllcorner, yllcorner, cellsize or NODATA_value");
    }
    const bool may_be_nan = key == "nodata_value";
    if (may_be_nan) {
      const auto word = small_letters(in.word("NODATA_value"));
      if (word == "nan" || word == "-nan") continue;  // NaN always means that there is no data
      const auto value = utils::parse_finite_number(word);
      if (!value) in.refuse("NODATA_value", "a number");
      header[key] = *value;
    } else {
      header[key] = in.number(key.c_str());
    }
  }
  const auto need = [&](const char* key, const char* other) {
    if (const auto found = header.find(key); found != header.end()) return found->second;
    if (const auto found = header.find(other); found != header.end()) return found->second;
    throw tools::Error(path + ", header: " + key + " is missing; expected it before the values.");
  };
  RasterData data;
  const auto size = [&](const char* key) {
    const double value = need(key, key);
    if (!(value >= 1.0) || value > 1e6 || value != std::floor(value)) {
      throw tools::Error(path + ", header: " + key + " is " + shown(value) +
                         ", expected a whole number from 1 to 1000000.");
    }
    return static_cast<int>(value);
  };
  data.n_columns = size("ncols");
  data.n_rows = size("nrows");
  const double dx = need("dx", "cellsize"), dy = need("dy", "cellsize");
  if (!(dx > 0.0) || !(dy > 0.0)) {
    throw tools::Error(path + ", header: cellsize is " + shown(std::min(dx, dy)) +
                       ", expected a size above 0.");
  }
  const double x = need("xllcorner", "xllcenter") - (header.count("xllcorner") ? 0.0 : 0.5 * dx);
  const double y = need("yllcorner", "yllcenter") - (header.count("yllcorner") ? 0.0 : 0.5 * dy);
  data.geometry = {x, dx, 0.0, y + dy * data.n_rows, 0.0, -dy};

  const auto n = static_cast<std::size_t>(data.n_columns) * static_cast<std::size_t>(data.n_rows);
  if (n > in.size_of_rest() / 2 + 1 + first_value.size()) {
    throw tools::Error(path + ": the header announces " + std::to_string(n) +
                       " values, more than the file can hold: it is cut off, or a count is wrong.");
  }
  const auto no_data = header.find("nodata_value");
  data.values.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const std::string_view word = i == 0 && !first_value.empty() ? std::string_view(first_value)
                                                                 : in.word("value of a pixel");
    const auto value = utils::parse_finite_number(word);
    const bool is_nan = !value && small_letters(word) == "nan";
    if (!value && !is_nan) in.refuse("value of a pixel", "a finite number");
    const bool has_data =
        value && (no_data == header.end() ? *value != -9999.0 : *value != no_data->second);
    data.values.push_back(has_data ? *value : std::numeric_limits<double>::quiet_NaN());
  }
  if (!in.at_end()) {
    in.word("end");
    in.refuse("after the last pixel", "the end of the file (are ncols and nrows right?)");
  }
  return data;
}

Raster::Raster(const std::string& path, std::optional<int> epsg) : path_(path) {
  utils::note_input_file(path);  // which the case must not replace
  const auto extension = small_letters(std::filesystem::path(path).extension().string());
  data_ = extension == ".asc" ? read_asc(path) : read_with_gdal(path, epsg);
  const auto& g = data_.geometry;
  const double determinant = g[1] * g[5] - g[2] * g[4];
  if (!(std::abs(determinant) > 0.0) || !std::isfinite(determinant)) {
    throw tools::Error(path + ": the pixels have no area; expected a georeferenced raster.");
  }
  inverse_ = {0.0, g[5] / determinant,  -g[2] / determinant,
              0.0, -g[4] / determinant, g[1] / determinant};
}

std::string Raster::coverage() const {
  const auto& g = data_.geometry;
  const auto range = [&](std::size_t first) {
    const double origin = g[first], along = g[first + 1] * data_.n_columns,
                 across = g[first + 2] * data_.n_rows;
    const auto [low, high] =
        std::minmax({origin, origin + along, origin + across, origin + along + across});
    return shown_coordinate(low) + " to " + shown_coordinate(high);
  };
  return "x " + range(0) + " m, y " + range(3) + " m";
}

Raster::Point Raster::locate(double x, double y) const {
  const double dx = x - data_.geometry[0], dy = y - data_.geometry[3];
  return {inverse_[1] * dx + inverse_[2] * dy - 0.5, inverse_[4] * dx + inverse_[5] * dy - 0.5};
}

std::optional<double> Raster::interpolate(double x, double y) const {
  return interpolate_at(locate(x, y));
}

std::optional<double> Raster::interpolate_at(Point point) const {
  constexpr double border = 0.5 + 1e-9;  // a node on the border, moved by rounding, lies inside
  const double last_u = data_.n_columns - 1, last_v = data_.n_rows - 1;
  if (!(point.u >= -border && point.u <= last_u + border && point.v >= -border &&
        point.v <= last_v + border)) {
    return std::nullopt;
  }
  const double u = std::clamp(point.u, 0.0, last_u), v = std::clamp(point.v, 0.0, last_v);
  const int column = std::min(static_cast<int>(u), std::max(data_.n_columns - 2, 0));
  const int row = std::min(static_cast<int>(v), std::max(data_.n_rows - 2, 0));
  const double s = u - column, t = v - row;
  double sum = 0.0, weight = 0.0;
  const auto add = [&](int c, int r, double w) {
    if (w == 0.0) return;  // such a pixel may lie beyond the border
    const double pixel = value(c, r);
    if (std::isnan(pixel)) return;
    sum += w * pixel;
    weight += w;
  };
  add(column, row, (1.0 - s) * (1.0 - t));
  add(column + 1, row, s * (1.0 - t));
  add(column, row + 1, (1.0 - s) * t);
  add(column + 1, row + 1, s * t);
  if (weight < 0.5) return std::nullopt;
  return sum / weight;
}

std::vector<Raster::Point> Raster::corners_of(const Mesh& mesh, const Cell& cell) const {
  std::vector<Point> corners;
  for (int k = 0; k < cell.size(); ++k) {
    const Node& node = mesh.nodes[static_cast<std::size_t>(cell.node(k))];
    corners.push_back(locate(node.x, node.y));
  }
  return corners;
}

/// Values, no-data left out, of the pixels whose centres lie in a polygon.
std::vector<double> Raster::values_inside(const std::vector<Point>& corners) const {
  std::vector<double> values;
  const auto [low, high] = std::minmax_element(corners.begin(), corners.end(),
                                               [](Point a, Point b) { return a.v < b.v; });
  const auto first_row = static_cast<int>(std::clamp(std::ceil(low->v), 0.0, 1e7));
  const auto last_row = static_cast<int>(std::clamp(std::floor(high->v), -1.0, data_.n_rows - 1.0));
  std::vector<double> crossings;
  for (int row = first_row; row <= last_row; ++row) {
    crossings.clear();
    for (std::size_t k = 0; k < corners.size(); ++k) {
      const Point a = corners[k], b = corners[(k + 1) % corners.size()];
      if ((a.v <= row) == (b.v <= row)) continue;
      crossings.push_back(a.u + (row - a.v) / (b.v - a.v) * (b.u - a.u));
    }
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t k = 0; k + 1 < crossings.size(); k += 2) {
      const auto first = static_cast<int>(std::clamp(std::ceil(crossings[k]), 0.0, 1e7));
      const auto last =
          static_cast<int>(std::clamp(std::floor(crossings[k + 1]), -1.0, data_.n_columns - 1.0));
      for (int column = first; column <= last; ++column) {
        if (const double pixel = value(column, row); !std::isnan(pixel)) values.push_back(pixel);
      }
    }
  }
  return values;
}

std::optional<double> Raster::mean(const Mesh& mesh, const Cell& cell) const {
  const std::vector<Point> corners = corners_of(mesh, cell);
  const std::vector<double> pixels = values_inside(corners);
  constexpr std::size_t enough = 4;
  double sum = 0.0;
  if (pixels.size() >= enough) {
    for (const double pixel : pixels) sum += pixel;
    return sum / static_cast<double>(pixels.size());
  }
  static const std::vector<QuadraturePoint> rule = seven_point_rule();
  double weight = 0.0;
  for (std::size_t k = 2; k < corners.size(); ++k) {
    const Point a = corners[0], b = corners[k - 1], c = corners[k];
    const double area = (b.u - a.u) * (c.v - a.v) - (b.v - a.v) * (c.u - a.u);
    for (const auto& q : rule) {
      const auto pixel =
          interpolate_at({q.a * a.u + q.b * b.u + q.c * c.u, q.a * a.v + q.b * b.v + q.c * c.v});
      if (!pixel) continue;
      sum += std::abs(area) * q.weight * *pixel;
      weight += std::abs(area) * q.weight;
    }
  }
  if (!(weight > 0.0)) return std::nullopt;
  return sum / weight;
}

std::optional<double> Raster::most_frequent(const Mesh& mesh, const Cell& cell) const {
  std::vector<double> pixels = values_inside(corners_of(mesh, cell));
  if (pixels.empty()) {
    const Node center = mesh.center(cell);
    const Point point = locate(center.x, center.y);
    const double column = std::round(point.u), row = std::round(point.v);
    if (!(column >= 0.0 && column < data_.n_columns && row >= 0.0 && row < data_.n_rows)) {
      return std::nullopt;
    }
    const double pixel = value(static_cast<int>(column), static_cast<int>(row));
    return std::isnan(pixel) ? std::nullopt : std::optional(pixel);
  }
  std::sort(pixels.begin(), pixels.end());
  double best = pixels.front();
  std::ptrdiff_t most = 0;
  for (auto first = pixels.begin(); first != pixels.end();) {
    const auto last = std::upper_bound(first, pixels.end(), *first);
    if (last - first > most) {
      most = last - first;
      best = *first;
    }
    first = last;
  }
  return best;
}

}  // namespace mesh_import
