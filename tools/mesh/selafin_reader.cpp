#include "mesh/selafin_reader.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "mesh/small_letters.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/files.hpp"

namespace mesh_import {

namespace {

/// A number whose bytes come with the highest one first.
template <class Unsigned>
Unsigned big_endian(std::string_view bytes) {
  Unsigned value = 0;
  for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
    value = (value << 8) | static_cast<unsigned char>(bytes[i]);
  }
  return value;
}

/// A file of unformatted Fortran records, each between two counts of its bytes.
class FortranFile {
 public:
  explicit FortranFile(const std::string& path) : path_(path), in_(utils::open_input_file(path)) {
    in_.seekg(0, std::ios::end);
    bytes_left_ = static_cast<long long>(in_.tellg());
    in_.seekg(0);
  }

  bool at_end() const { return bytes_left_ == 0; }

  /// The next record; `what` names it in messages.
  std::string record(const std::string& what) {
    const std::uint32_t size = count(what);
    if (static_cast<long long>(size) + 4 > bytes_left_) {
      refuse(what, "found a record of " + utils::counted(size, "byte") + " where " +
                       std::to_string(std::max(bytes_left_, 0LL)) + " are left");
    }
    const std::string bytes = take(size);
    if (count(what) != size) refuse(what, "found two different lengths around a record");
    return bytes;
  }
  /// The same, of a known size.
  std::string record(const std::string& what, std::size_t size) {
    std::string bytes = record(what);
    if (bytes.size() != size) {
      refuse(what, "found a record of " + utils::counted(bytes.size(), "byte") + ", expected " +
                       std::to_string(size));
    }
    return bytes;
  }
  std::vector<int> integers(const std::string& what, std::size_t n) {
    const std::string bytes = record(what, 4 * n);
    std::vector<int> values;
    for (std::size_t i = 0; i < n; ++i) {
      values.push_back(std::bit_cast<std::int32_t>(
          big_endian<std::uint32_t>(std::string_view(bytes).substr(4 * i))));
    }
    return values;
  }
  /// Numbers of single or of double precision, as the size of their record tells.
  std::vector<double> numbers(const std::string& what, std::size_t n) {
    const std::string bytes = record(what);
    const bool is_double = bytes.size() == 8 * n;
    if (!is_double && bytes.size() != 4 * n) {
      refuse(what, "found a record of " + utils::counted(bytes.size(), "byte") + ", expected " +
                       utils::counted(n, "number") + " of 4 or 8 bytes");
    }
    std::vector<double> values;
    for (std::size_t i = 0; i < n; ++i) {
      const std::string_view rest = std::string_view(bytes).substr((is_double ? 8 : 4) * i);
      values.push_back(is_double ? std::bit_cast<double>(big_endian<std::uint64_t>(rest))
                                 : std::bit_cast<float>(big_endian<std::uint32_t>(rest)));
      if (!std::isfinite(values.back())) refuse(what, "found a value that is no finite number");
    }
    return values;
  }

  [[noreturn]] void refuse(const std::string& what, const std::string& fault) const {
    throw tools::Error(path_ + ", " + what + ": " + fault + "; expected a SELAFIN file.");
  }

 private:
  std::uint32_t count(const std::string& what) {
    if (bytes_left_ < 4) refuse(what, "the file ends here");
    return big_endian<std::uint32_t>(take(4));
  }
  std::string take(std::size_t size) {
    std::string bytes(size, '\0');
    in_.read(bytes.data(), static_cast<std::streamsize>(size));
    if (!in_) throw tools::Error(path_ + ": the file cannot be read to its end.");
    bytes_left_ -= static_cast<long long>(size);
    return bytes;
  }

  std::string path_;
  std::ifstream in_;
  long long bytes_left_ = 0;
};

class SelafinReader {
 public:
  explicit SelafinReader(const std::string& path) : in_(path) {}

  Mesh read() {
    read_header();
    read_cells();
    read_points();
    read_bottom();
    mesh_.zones.push_back({});
    mesh_.zone_of_cell.assign(mesh_.cells.size(), 0);
    mesh_.format = std::string("SELAFIN, ") + (is_double_ ? "double" : "single") + " precision";
    return std::move(mesh_);
  }

 private:
  void read_header() {
    in_.record("the title", 80);
    const std::vector<int> counts = in_.integers("the counts of variables", 2);
    if (counts[0] < 0 || counts[1] < 0)
      in_.refuse("the counts of variables", "found negative ones");
    for (long long i = 0; i < static_cast<long long>(counts[0]) + counts[1]; ++i) {
      const std::string name = small_letters(in_.record("the names of variables", 32));
      if (i < counts[0]) variables_.push_back(name);
    }
    parameters_ = in_.integers("the parameters", 10);
    if (parameters_[6] > 1) in_.refuse("the parameters", "found planes above each other");
    if (parameters_[9] == 1) in_.record("the date", 24);
  }

  void read_cells() {
    const std::vector<int> counts = in_.integers("the counts of elements and points", 4);
    n_cells_ = counts[0];
    n_points_ = counts[1];
    const int n_nodes = counts[2];
    if (n_cells_ < 1 || n_points_ < 3 || (n_nodes != 3 && n_nodes != 4)) {
      in_.refuse("the counts of elements and points",
                 "found " + std::to_string(n_cells_) + " elements of " + std::to_string(n_nodes) +
                     " nodes and " + std::to_string(n_points_) +
                     " points, expected elements of 3 or 4 nodes");
    }
    const std::size_t stride = static_cast<std::size_t>(n_nodes);
    const std::vector<int> nodes =
        in_.integers("the elements", static_cast<std::size_t>(n_cells_) * stride);
    for (std::size_t i = 0; i < nodes.size(); i += stride) {
      Cell cell;
      for (std::size_t k = 0; k < stride; ++k) {
        if (nodes[i + k] < 1 || nodes[i + k] > n_points_) {
          in_.refuse("the elements", "found the point " + std::to_string(nodes[i + k]) +
                                         " in element " + std::to_string(i / stride + 1) +
                                         ", expected 1 to " + std::to_string(n_points_));
        }
        cell.nodes[k] = nodes[i + k] - 1;
      }
      mesh_.cells.push_back(cell);
    }
  }

  void read_points() {
    const auto n = static_cast<std::size_t>(n_points_);
    in_.integers("the boundary points", n);
    const std::vector<double> x = in_.numbers("the coordinates x", n);
    const std::vector<double> y = in_.numbers("the coordinates y", n);
    for (std::size_t i = 0; i < n; ++i) {
      mesh_.nodes.push_back({x[i] + parameters_[2], y[i] + parameters_[3], 0.0});
    }
  }

  /// Of the first time step; whatever comes behind is left unread.
  void read_bottom() {
    const std::optional<std::size_t> bottom = bottom_variable();
    if (!bottom || in_.at_end()) {
      mesh_.remarks.push_back("The file holds no bottom: all elevations are 0.");
      return;
    }
    is_double_ = in_.record("the time").size() == 8;
    for (std::size_t i = 0; i <= *bottom; ++i) {
      const std::vector<double> values =
          in_.numbers("the variable " + std::to_string(i + 1), mesh_.nodes.size());
      for (std::size_t k = 0; i == *bottom && k < values.size(); ++k) mesh_.nodes[k].z = values[k];
    }
  }

  std::optional<std::size_t> bottom_variable() const {
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      for (const char* name : {"bottom", "fond"}) {
        if (variables_[i].starts_with(name) && !variables_[i].starts_with("bottom friction")) {
          return i;
        }
      }
    }
    return std::nullopt;
  }

  FortranFile in_;
  std::vector<std::string> variables_;
  std::vector<int> parameters_;
  int n_cells_ = 0, n_points_ = 0;
  bool is_double_ = false;
  Mesh mesh_;
};

}  // namespace

Mesh read_selafin(const std::string& path) { return SelafinReader(path).read(); }

}  // namespace mesh_import
