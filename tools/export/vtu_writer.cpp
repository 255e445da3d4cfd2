#include "export/vtu_writer.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "export/MaximaTable.hpp"
#include "export/SnapshotReader.hpp"
#include "export/quantities.hpp"
#include "support/PartialFile.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

namespace fs = std::filesystem;

static_assert(std::endian::native == std::endian::little, "the files say LittleEndian");

template <class T>
const char* vtk_type() {
  if constexpr (std::is_same_v<T, double>) return "Float64";
  if constexpr (std::is_same_v<T, float>) return "Float32";
  if constexpr (std::is_same_v<T, std::int32_t>) return "Int32";
  if constexpr (std::is_same_v<T, std::uint8_t>) return "UInt8";
}

/// A VTU file: first the arrays are announced, then their bytes follow, each after its size in
/// 64 bits, since 32 are too few for large meshes.
class VtuFile {
 public:
  VtuFile(const fs::path& name, std::size_t n_points, std::size_t n_cells) : file_(name) {
    out() << "<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"LittleEndian\" "
             "header_type=\"UInt64\">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\""
          << n_points << "\" NumberOfCells=\"" << n_cells << "\">\n";
  }

  void begin(const std::string& section) { out() << '<' << section << ">\n"; }
  void end(const std::string& section) { out() << "</" << section << ">\n"; }
  /// Announces an array of `count` values, which `fill` computes when it is written.
  template <class T>
  void add(const std::string& name, int components, std::size_t count,
           std::function<void(std::vector<T>&)> fill) {
    out() << "<DataArray type=\"" << vtk_type<T>() << "\" Name=\"" << name << '"';
    if (components > 1) out() << " NumberOfComponents=\"" << components << '"';
    out() << " format=\"appended\" offset=\"" << offset_ << "\"/>\n";
    offset_ += sizeof(std::uint64_t) + count * sizeof(T);
    blocks_.push_back([this, count, fill] {
      std::vector<T> values;
      values.reserve(count);
      fill(values);
      const std::uint64_t size = count * sizeof(T);
      out().write(reinterpret_cast<const char*>(&size), sizeof size);
      out().write(reinterpret_cast<const char*>(values.data()), static_cast<std::streamsize>(size));
    });
  }
  void write() {
    out() << "</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_";
    for (const auto& block : blocks_) block();
    out() << "\n</AppendedData>\n</VTKFile>\n";
    file_.commit();
  }

 private:
  std::ostream& out() { return file_.stream(); }

  tools::PartialStream file_;
  std::uint64_t offset_ = 0;
  std::vector<std::function<void()>> blocks_;
};

std::uint8_t vtk_cell_type(std::size_t corners) {
  constexpr std::uint8_t triangle = 5, quadrilateral = 9, polygon = 7;
  return corners == 3 ? triangle : corners == 4 ? quadrilateral : polygon;
}

void add_mesh(VtuFile& file, const CaseResults& results, bool has_relief) {
  const Mesh& mesh = results.mesh;
  file.begin("Points");
  file.add<double>("Points", 3, 3 * mesh.n_nodes(), [&results, has_relief](auto& values) {
    const std::vector<double> z =
        has_relief ? results.node_bed() : std::vector<double>(results.mesh.n_nodes(), 0.0);
    for (std::size_t i = 0; i < z.size(); ++i) {
      values.insert(values.end(), {results.mesh.x[i], results.mesh.y[i], z[i]});
    }
  });
  file.end("Points");
  file.begin("Cells");
  file.add<std::int32_t>("connectivity", 1, mesh.nodes.size(), [&mesh](auto& values) {
    values.assign(mesh.nodes.begin(), mesh.nodes.end());
  });
  file.add<std::int32_t>("offsets", 1, mesh.n_cells(), [&mesh](auto& values) {
    values.assign(mesh.first.begin() + 1, mesh.first.end());
  });
  file.add<std::uint8_t>("types", 1, mesh.n_cells(), [&mesh](auto& values) {
    for (std::size_t i = 0; i < mesh.n_cells(); ++i) {
      values.push_back(vtk_cell_type(mesh.nodes_of(i).size()));
    }
  });
  file.end("Cells");
}

void add_bed(VtuFile& file, const CaseResults& results) {
  file.add<double>("bed", 1, results.bed.size(),
                   [&results](auto& values) { values = results.bed; });
}

/// A vector has three components in VTK. Where it is hidden it is zero: arrows and stream lines
/// need a number.
void add_vector(VtuFile& file, const Quantity& x, const Quantity& y, const CaseResults& results,
                const Snapshot& snapshot) {
  const std::size_t n = results.mesh.n_cells();
  file.add<float>(x.name, 3, 3 * n, [&, n](auto& values) {
    std::vector<float> component;
    values.assign(3 * n, 0.0f);
    for (std::size_t k = 0; k < 2; ++k) {
      evaluate(k == 0 ? x : y, results, snapshot.columns, component);
      for (std::size_t i = 0; i < n; ++i) {
        if (!std::isnan(component[i])) values[3 * i + k] = component[i];
      }
    }
  });
}

void write_snapshot(const fs::path& name, const CaseResults& results, const Snapshot& snapshot,
                    bool has_relief) {
  const std::size_t n = results.mesh.n_cells();
  const std::vector<Quantity> quantities = dataset_quantities(results.files);
  VtuFile file(name, results.mesh.n_nodes(), n);
  add_mesh(file, results, has_relief);
  file.begin("CellData");
  if (!results.files.has_sediment) add_bed(file, results);
  for (std::size_t k = 0; k < quantities.size(); ++k) {
    const Quantity& quantity = quantities[k];
    if (quantity.part == Quantity::Part::x) {
      add_vector(file, quantity, quantities[k + 1], results, snapshot);
    } else if (quantity.part == Quantity::Part::scalar) {
      file.add<float>(quantity.name, 1, n,
                      [&](auto& values) { evaluate(quantity, results, snapshot.columns, values); });
    }
  }
  file.end("CellData");
  file.write();
}

void write_envelope(const fs::path& name, const CaseResults& results,
                    const std::vector<double>& max_depth, bool has_relief) {
  VtuFile file(name, results.mesh.n_nodes(), results.mesh.n_cells());
  add_mesh(file, results, has_relief);
  file.begin("CellData");
  file.add<float>("max_depth", 1, max_depth.size(), [&max_depth](auto& values) {
    values.assign(max_depth.begin(), max_depth.end());
  });
  if (!results.files.has_sediment) {
    add_bed(file, results);
    file.add<float>("max_level", 1, max_depth.size(),
                    [&](auto& values) { values = max_level(results, max_depth); });
  }
  file.end("CellData");
  file.write();
}

void write_maxima(const fs::path& name, const CaseResults& results, bool has_relief) {
  const MaximaTable maxima = read_maxima(results);
  VtuFile file(name, results.mesh.n_nodes(), results.mesh.n_cells());
  add_mesh(file, results, has_relief);
  file.begin("CellData");
  for (const MaximaQuantity& quantity : maxima_quantities) {
    file.add<float>(quantity.name, 1, results.mesh.n_cells(),
                    [&](auto& values) { values = maxima[quantity]; });
  }
  file.end("CellData");
  file.write();
}

/// A text as the value of an attribute.
std::string escaped(const std::string& text) {
  std::string value;
  for (const char c : text) {
    if (c == '&' || c == '<' || c == '"' || (c >= 0 && c < ' ')) {
      value += "&#" + std::to_string(static_cast<int>(c)) + ";";
    } else {
      value += c;
    }
  }
  return value;
}

/// The PVD grows with every snapshot, so that it can be opened while the export goes on.
void write_collection(const fs::path& name, const std::string& data_sets) {
  tools::PartialStream file(name);
  file.stream() << "<VTKFile type=\"Collection\" version=\"0.1\">\n<Collection>\n"
                << data_sets << "</Collection>\n</VTKFile>\n";
  file.commit();
}

}  // namespace

void write_vtu(const CaseResults& results, const VtuOptions& options) {
  const fs::path collection(options.output);
  const auto beside = [&](const std::string& suffix) {
    return collection.parent_path() / (collection.stem().string() + suffix + ".vtu");
  };
  std::string data_sets;
  Snapshot snapshot;
  for (std::size_t i = 0; i < results.snapshots.size(); ++i) {
    read_snapshot(results, results.snapshots[i], snapshot);
    char number[24];
    std::snprintf(number, sizeof number, "_%04zu", i);
    const fs::path name = beside(number);
    write_snapshot(name, results, snapshot, options.has_relief);
    data_sets += "<DataSet timestep=\"" + utils::number_text(snapshot.time, 15) +
                 "\" group=\"\" part=\"0\" file=\"" + escaped(name.filename().string()) + "\"/>\n";
    write_collection(collection, data_sets);
  }
  if (const auto max_depth = results.max_depth(&snapshot.below_zero)) {
    write_envelope(beside("_envelope"), results, *max_depth, options.has_relief);
  }
  if (results.has_maxima()) write_maxima(beside("_maxima"), results, options.has_relief);
  snapshot.below_zero.tell();
}

}  // namespace exports
