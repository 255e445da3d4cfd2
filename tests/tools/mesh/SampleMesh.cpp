#include "tools/mesh/SampleMesh.hpp"

#include <array>
#include <sstream>
#include <vector>

namespace support {

namespace {

/// Values one after the other: as words, or as the bytes of a binary file.
class Values {
 public:
  explicit Values(bool is_binary) : is_binary_(is_binary) { text_.precision(17); }

  template <class T>
  Values& add(T value) {
    if (is_binary_) {
      text_.write(reinterpret_cast<const char*>(&value), sizeof value);
    } else {
      text_ << value << ' ';
    }
    return *this;
  }
  Values& text(const std::string& text) {
    text_ << text;
    return *this;
  }
  /// Ends a line of a text file.
  void end() {
    if (!is_binary_) text_ << '\n';
  }
  std::string str() const { return text_.str(); }

 private:
  bool is_binary_;
  std::ostringstream text_;
};

const char physical_names[] =
    "$PhysicalNames\n5\n1 11 \"west\"\n1 12 \"east\"\n1 13 \"gate\"\n"
    "2 21 \"left\"\n2 22 \"right\"\n$EndPhysicalNames\n";

constexpr int line_type = 1, triangle_type = 2;

std::string format_section(const char* version, bool is_binary) {
  Values values(is_binary);
  values.text(std::string("$MeshFormat\n") + version + (is_binary ? " 1 8\n" : " 0 8\n"));
  if (is_binary) values.add(1).text("\n");
  return values.text("$EndMeshFormat\n").str();
}

/// Elements of one line or surface.
struct Group {
  int dimension, tag;
  std::vector<std::vector<int>> elements;
};

std::vector<Group> groups_of(const SampleMesh& mesh) {
  const auto node = [&mesh](int i, int j) { return j * (mesh.nx + 1) + i; };
  std::vector<Group> groups{{1, 11, {}}, {1, 12, {}}, {1, 13, {}}, {2, 21, {}}, {2, 22, {}}};
  const std::array<int, 3> columns{0, mesh.nx, mesh.middle};
  for (std::size_t line = 0; line < columns.size(); ++line) {
    for (int j = 0; j < mesh.ny; ++j) {
      groups[line].elements.push_back({node(columns[line], j), node(columns[line], j + 1)});
    }
  }
  for (int j = 0; j < mesh.ny; ++j) {
    for (int i = 0; i < mesh.nx; ++i) {
      auto& elements = groups[i < mesh.middle ? 3 : 4].elements;
      const int a = node(i, j), b = node(i + 1, j), c = node(i + 1, j + 1), d = node(i, j + 1);
      if (mesh.clockwise) {
        elements.insert(elements.end(), {{a, c, b}, {a, d, c}});
      } else {
        elements.insert(elements.end(), {{a, b, c}, {a, c, d}});
      }
    }
  }
  return groups;
}

}  // namespace

std::string SampleMesh::msh2(bool is_binary) const {
  Values out(is_binary);
  out.text(format_section("2.2", is_binary)).text(physical_names);
  out.text("$Nodes\n" + std::to_string(n_nodes()) + "\n");
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      out.add(node(i, j) + 1).add(double(i)).add(double(j)).add(z(i, j)).end();
    }
  }
  const auto groups = groups_of(*this);
  std::size_t n_elements = 0;
  for (const auto& group : groups) n_elements += group.elements.size();
  out.text("\n$EndNodes\n$Elements\n" + std::to_string(n_elements) + "\n");
  int number = 0;
  for (const auto& group : groups) {
    const int type = group.dimension == 1 ? line_type : triangle_type;
    if (is_binary) out.add(type).add(static_cast<int>(group.elements.size())).add(2);
    for (const auto& element : group.elements) {
      out.add(++number);
      if (!is_binary) out.add(type).add(2);
      out.add(group.tag).add(group.tag);
      for (const int n : element) out.add(n + 1);
      out.end();
    }
  }
  return out.text("\n$EndElements\n").str();
}

std::string SampleMesh::msh4(bool is_binary) const {
  Values out(is_binary);
  out.text(format_section("4.1", is_binary)).text(physical_names).text("$Entities\n");
  const auto groups = groups_of(*this);
  out.add(0LL).add(3LL).add(2LL).add(0LL).end();
  for (const auto& group : groups) {
    out.add(group.tag - 10);
    for (int k = 0; k < 6; ++k) out.add(0.0);
    out.add(1LL).add(group.tag).add(0LL).end();
  }
  out.text("\n$EndEntities\n$Nodes\n");
  const long long n = n_nodes();
  out.add(1LL).add(n).add(1LL).add(10 * n).end();
  out.add(2).add(11).add(0).add(n).end();
  for (long long k = 0; k < n; ++k) {
    out.add(10 * k + 1).end();  // sparse numbers
  }
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) out.add(x0 + i).add(y0 + j).add(z(i, j)).end();
  }
  long long n_elements = 0;
  for (const auto& group : groups) n_elements += static_cast<long long>(group.elements.size());
  out.text("\n$EndNodes\n$Elements\n");
  out.add(static_cast<long long>(groups.size())).add(n_elements).add(1LL).add(n_elements).end();
  long long number = 0;
  for (const auto& group : groups) {
    out.add(group.dimension).add(group.tag - 10);
    out.add(group.dimension == 1 ? line_type : triangle_type);
    out.add(static_cast<long long>(group.elements.size())).end();
    for (const auto& element : group.elements) {
      out.add(++number);
      for (const int k : element) out.add(10LL * k + 1);
      out.end();
    }
  }
  return out.text("\n$EndElements\n").str();
}

std::string SampleMesh::sms(bool quads) const {
  std::ostringstream out;
  out.precision(17);
  out << "MESH2D\nMESHNAME \"sample\"\n";
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      out << "ND " << node(i, j) + 1 << ' ' << i << ' ' << j << ' ' << z(i, j) << '\n';
    }
  }
  const auto groups = groups_of(*this);
  int number = 0;
  for (const auto& group : groups) {
    if (group.dimension == 1) continue;
    for (std::size_t k = 0; k < group.elements.size(); ++k) {
      const auto& element = group.elements[k];
      if (quads && k % 2 == 1) continue;
      out << (quads ? "E4Q " : "E3T ") << ++number;
      for (const int n : element) out << ' ' << n + 1;
      if (quads) out << ' ' << group.elements[k + 1].back() + 1;
      out << ' ' << group.tag - 20 << '\n';
    }
  }
  for (const auto& group : groups) {
    if (group.dimension == 2) continue;
    out << "NS";
    for (const auto& element : group.elements) out << ' ' << element[0] + 1;
    out << " -" << group.elements.back()[1] + 1 << ' ';
    out << (group.tag == 11 ? "west" : group.tag == 12 ? "east" : "gate") << '\n';
  }
  out << "MAT 1 \"left\"\nMAT 2 \"right\"\n";
  return out.str();
}

std::string asc_grid(int columns, int rows, double x, double y, double size,
                     const std::function<double(double, double)>& value) {
  std::ostringstream out;
  out.precision(17);
  out << "ncols " << columns << "\nnrows " << rows << "\nxllcorner " << x << "\nyllcorner " << y
      << "\ncellsize " << size << "\nNODATA_value -9999\n";
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      out << value(x + (column + 0.5) * size, y + (rows - row - 0.5) * size) << ' ';
    }
    out << '\n';
  }
  return out.str();
}

}  // namespace support
