#include "mesh/gmsh_reader.hpp"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <map>
#include <utility>

#include "mesh/ForeignScanner.hpp"
#include "mesh/NodeNumbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

constexpr int element_line = 1;
constexpr int element_triangle = 2;
constexpr int element_quad = 3;
constexpr int element_point = 15;

/// A file of one version and kind, section by section. Values of ASCII and binary files follow each
/// other in the same order, so that one text reads both.
class MshReader {
 public:
  explicit MshReader(const std::string& path) : in_(path) {}

  Mesh read() {
    read_format();
    while (!in_.at_end()) read_section(std::string(in_.word("section")));
    check();
    return std::move(mesh_);
  }

 private:
  bool is_version_4() const { return version_ == "4.1"; }

  // A value of the size that the formats give it in a binary file.
  int integer(const char* what) {
    if (is_binary_) return in_.raw<int>(what);
    const long long value = in_.integer(what);
    if (value < INT_MIN || value > INT_MAX) in_.refuse(what, "a smaller integer");
    return static_cast<int>(value);
  }
  long long long_integer(const char* what) {
    return is_binary_ ? in_.raw<long long>(what) : in_.integer(what);
  }
  double number(const char* what) {
    if (!is_binary_) return in_.number(what);
    const double value = in_.raw<double>(what);
    if (!std::isfinite(value)) in_.refuse(what, "a finite number");
    return value;
  }
  long long tag(const char* what) { return is_version_4() ? long_integer(what) : integer(what); }
  /// A number of records that the rest of the file can hold, so that it is safe to allocate.
  long long count(long long value, const char* what, std::size_t bytes_per_record) {
    const auto most = static_cast<long long>(in_.size_of_rest() / bytes_per_record);
    if (value < 0 || value > most) {
      in_.refuse(what, "a count from 0 to " + std::to_string(most) +
                           ", the most that the rest of the file can hold");
    }
    return value;
  }
  long long count(const char* what, std::size_t bytes_per_record) {
    return count(long_integer(what), what, bytes_per_record);
  }

  void read_format();
  void read_section(const std::string& name);
  void read_physical_names();
  void read_entities();
  void read_entity(int dimension);
  void read_nodes();
  void read_elements_2();
  void read_elements_4();
  void read_element(int type, int zone_or_group);
  void check_type(int type);
  void check();

  int group_of(int dimension, int tag);
  int zone_of(std::vector<int> surfaces);

  ForeignScanner in_;
  std::string version_;
  bool is_binary_ = false;
  Mesh mesh_;
  NodeNumbers numbers_;
  bool has_nodes_ = false;
  std::map<std::pair<int, int>, int> groups_;  // (dimension, physical tag) -> index of the name
  std::map<std::vector<int>, int> zones_;
  /// (dimension, tag) of an entity -> its physical groups, as indices of names.
  std::map<std::pair<int, int>, std::vector<int>> entities_;
};

void MshReader::read_format() {
  if (in_.at_end() || in_.word("section") != "$MeshFormat") {
    throw tools::Error(in_.path() + ", line 1: this is no .msh file of Gmsh: it must begin with " +
                       "$MeshFormat.");
  }
  version_ = in_.word("version");
  if (version_ == "2.20") version_ = "2.2";
  if (version_ != "2.2" && version_ != "4.1") {
    in_.refuse("version", "2.2 or 4.1 (gmsh -save -format msh41 writes the latter)");
  }
  const long long kind = in_.integer("file type");
  if (kind != 0 && kind != 1) in_.refuse("file type", "0 (ASCII) or 1 (binary)");
  if (in_.integer("size of a number") != 8) in_.refuse("size of a number", "8");
  is_binary_ = kind == 1;
  if (is_binary_) {
    in_.skip_line();
    if (in_.raw<int>("byte order") != 1) {
      in_.refuse("byte order", "the integer 1: the file comes from a machine of other byte order");
    }
  }
  in_.expect_word("$EndMeshFormat");
  mesh_.format = "Gmsh " + version_ + (is_binary_ ? ", binary" : ", ASCII");
}

void MshReader::read_section(const std::string& name) {
  if (name.size() < 2 || name[0] != '$' || name.compare(0, 4, "$End") == 0) {
    in_.refuse("section", "a section such as $Nodes (is a count before it wrong?)");
  }
  if (name == "$PhysicalNames") {
    read_physical_names();
  } else if (name == "$Entities" && is_version_4()) {
    read_entities();
  } else if (name == "$Nodes") {
    read_nodes();
  } else if (name == "$Elements") {
    if (!has_nodes_) in_.refuse("section", "$Nodes before it");
    is_version_4() ? read_elements_4() : read_elements_2();
  } else {
    in_.skip_past("$End" + name.substr(1));
    return;
  }
  in_.expect_word("$End" + name.substr(1));
}

/// This section is text in binary files too.
void MshReader::read_physical_names() {
  const long long n = count(in_.integer("number of names"), "number of names", 6);
  for (long long i = 0; i < n; ++i) {
    const long long dimension = in_.integer("dimension of a physical group");
    const long long tag = in_.integer("number of a physical group");
    if (tag < INT_MIN || tag > INT_MAX) in_.refuse("number of a physical group", "a smaller one");
    const std::string name = in_.quoted_text("name of a physical group");
    if (dimension != 1 && dimension != 2) continue;
    auto& names = dimension == 1 ? mesh_.line_names : mesh_.surface_names;
    const auto found = std::find(names.begin(), names.end(), name);
    groups_[{static_cast<int>(dimension), static_cast<int>(tag)}] =
        static_cast<int>(found - names.begin());
    if (found == names.end()) names.push_back(name);
  }
}

/// Index of the name of a physical group; the tag is negative where a line runs backwards.
int MshReader::group_of(int dimension, int tag) {
  const int positive = tag == INT_MIN ? INT_MAX : std::abs(tag);
  auto& names = dimension == 1 ? mesh_.line_names : mesh_.surface_names;
  const auto [group, is_new] =
      groups_.try_emplace({dimension, positive}, static_cast<int>(names.size()));
  if (is_new) names.push_back(std::to_string(positive));
  return group->second;
}

int MshReader::zone_of(std::vector<int> surfaces) {
  std::sort(surfaces.begin(), surfaces.end());
  surfaces.erase(std::unique(surfaces.begin(), surfaces.end()), surfaces.end());
  const auto [zone, is_new] = zones_.try_emplace(surfaces, static_cast<int>(mesh_.zones.size()));
  if (is_new) mesh_.zones.push_back(std::move(surfaces));
  return zone->second;
}

void MshReader::read_entities() {
  if (is_binary_) in_.skip_line();
  constexpr std::size_t bytes_per_entity = 5;
  long long n[4];
  for (long long& value : n) value = count("number of entities", bytes_per_entity);
  for (int dimension = 0; dimension < 4; ++dimension) {
    for (long long i = 0; i < n[dimension]; ++i) read_entity(dimension);
  }
}

void MshReader::read_entity(int dimension) {
  const int tag = integer("number of an entity");
  const int coordinates = dimension == 0 ? 3 : 6;  // of the point, or of the bounding box
  for (int k = 0; k < coordinates; ++k) number("coordinate of an entity");
  std::vector<int> groups;
  const long long n_groups = count("number of physical groups", 2);
  for (long long k = 0; k < n_groups; ++k) {
    const int group = integer("physical group");
    if (dimension == 1 || dimension == 2) groups.push_back(group_of(dimension, group));
  }
  if (dimension > 0) {
    const long long n_bounding = count("number of bounding entities", 2);
    for (long long k = 0; k < n_bounding; ++k) integer("bounding entity");
  }
  entities_[{dimension, tag}] = std::move(groups);
}

void MshReader::read_nodes() {
  if (has_nodes_) in_.refuse("section", "one section $Nodes");
  has_nodes_ = true;
  NodeNumbers::Builder builder;
  if (!is_version_4()) {
    const long long n = count(in_.integer("number of nodes"), "number of nodes", 8);
    if (is_binary_) in_.skip_line();
    for (long long i = 0; i < n; ++i) {
      builder.add(integer("number of a node"));
      const double x = number("x"), y = number("y"), z = number("z");
      mesh_.nodes.push_back({x, y, z});
    }
  } else {
    if (is_binary_) in_.skip_line();
    const long long n_blocks = count("number of blocks of nodes", 8);
    const long long n = count("number of nodes", 8);
    long_integer("smallest number of a node");
    long_integer("largest number of a node");
    for (long long block = 0; block < n_blocks; ++block) {
      const int dimension = integer("dimension of an entity");
      integer("number of an entity");
      const int is_parametric = integer("mark of parametric coordinates");
      if (dimension < 0 || dimension > 3) in_.refuse("dimension of an entity", "0 to 3");
      if (is_parametric != 0 && is_parametric != 1) {
        in_.refuse("mark of parametric coordinates", "0 or 1");
      }
      const long long in_block = count("number of nodes of a block", 8);
      for (long long i = 0; i < in_block; ++i) builder.add(long_integer("number of a node"));
      for (long long i = 0; i < in_block; ++i) {
        const double x = number("x"), y = number("y"), z = number("z");
        mesh_.nodes.push_back({x, y, z});
        for (int k = 0; k < is_parametric * dimension; ++k) number("parametric coordinate");
      }
    }
    if (n != static_cast<long long>(mesh_.nodes.size())) {
      throw tools::Error(in_.path() + ": $Nodes announces " + std::to_string(n) +
                         " nodes and its blocks hold " + std::to_string(mesh_.nodes.size()) + ".");
    }
  }
  numbers_ = NodeNumbers(std::move(builder), in_.path());
}

void MshReader::check_type(int type) {
  if (type == element_line || type == element_triangle || type == element_quad ||
      type == element_point) {
    return;
  }
  in_.refuse("type of an element",
             "1 (line), 2 (triangle), 3 (quadrilateral) or 15 (point), but is " +
                 std::to_string(type) +
                 ": a plane mesh of first order (Mesh.ElementOrder = 1) is needed");
}

/// The nodes of an element of a zone (triangles, quadrilaterals) or physical group (lines; negative
/// for none).
void MshReader::read_element(int type, int zone_or_group) {
  const auto next_node = [this] {
    const int node = numbers_.find(tag("node of an element"));
    if (node < 0) in_.refuse("node of an element", "the number of a node of this file");
    return node;
  };
  if (type == element_point) {
    next_node();
  } else if (type == element_line) {
    const int a = next_node(), b = next_node();
    if (zone_or_group >= 0) mesh_.line_pieces.push_back({a, b, zone_or_group});
  } else {
    Cell cell;
    const std::size_t n = type == element_quad ? 4 : 3;
    for (std::size_t k = 0; k < n; ++k) cell.nodes[k] = next_node();
    mesh_.cells.push_back(cell);
    mesh_.zone_of_cell.push_back(zone_or_group);
  }
}

void MshReader::read_elements_2() {
  const long long n = count(in_.integer("number of elements"), "number of elements", 6);
  if (is_binary_) in_.skip_line();
  std::map<int, int> zone_of_tag;
  for (long long i = 0; i < n;) {
    // A binary file has a header per block of elements, an ASCII file one per element.
    if (!is_binary_) integer("number of an element");
    const int type = integer("type of an element");
    check_type(type);
    const int in_block = is_binary_ ? integer("number of elements of a block") : 1;
    if (in_block < 1 || in_block > n - i) {
      in_.refuse("number of elements of a block", "1 to " + std::to_string(n - i));
    }
    const long long n_tags = count(integer("number of tags"), "number of tags", 2);
    for (int k = 0; k < in_block; ++k) {
      if (is_binary_) integer("number of an element");
      int physical = 0;
      for (long long t = 0; t < n_tags; ++t) {
        const int value = integer("tag of an element");
        if (t == 0) physical = value;
      }
      int group = -1;
      if (type == element_line) {
        if (physical != 0) group = group_of(1, physical);
      } else if (type != element_point) {
        auto zone = zone_of_tag.find(physical);
        if (zone == zone_of_tag.end()) {
          std::vector<int> surfaces;
          if (physical != 0) surfaces.push_back(group_of(2, physical));
          zone = zone_of_tag.emplace(physical, zone_of(std::move(surfaces))).first;
        }
        group = zone->second;
      }
      read_element(type, group);
    }
    i += in_block;
  }
}

void MshReader::read_elements_4() {
  if (is_binary_) in_.skip_line();
  const long long n_blocks = count("number of blocks of elements", 8);
  const long long n = count("number of elements", 4);
  long_integer("smallest number of an element");
  long_integer("largest number of an element");
  long long n_read = 0;
  for (long long block = 0; block < n_blocks; ++block) {
    const int dimension = integer("dimension of an entity");
    const int entity_tag = integer("number of an entity");
    const auto entity = entities_.find({dimension, entity_tag});
    if (entity == entities_.end() && !entities_.empty()) {
      in_.refuse("number of an entity", "an entity of $Entities (is the mesh partitioned?)");
    }
    const auto groups = entity == entities_.end() ? std::vector<int>() : entity->second;
    const int type = integer("type of an element");
    check_type(type);
    const int dimension_of_type = type == element_point ? 0 : type == element_line ? 1 : 2;
    if (dimension != dimension_of_type) {
      in_.refuse("type of an element", "one of dimension " + std::to_string(dimension));
    }
    const long long in_block = count("number of elements of a block", 4);
    const int zone = dimension == 2 ? zone_of(groups) : -1;
    for (long long i = 0; i < in_block; ++i) {
      long_integer("number of an element");
      if (type == element_line) {
        read_element(type, groups.empty() ? -1 : groups.front());
        for (std::size_t g = 1; g < groups.size(); ++g) {
          mesh_.line_pieces.push_back(mesh_.line_pieces.back());
          mesh_.line_pieces.back().line = groups[g];
        }
      } else {
        read_element(type, zone);
      }
    }
    n_read += in_block;
  }
  if (n != n_read) {
    throw tools::Error(in_.path() + ": $Elements announces " + std::to_string(n) +
                       " elements and its blocks hold " + std::to_string(n_read) + ".");
  }
}

void MshReader::check() {
  if (!has_nodes_) throw tools::Error(in_.path() + ": the file holds no section $Nodes.");
  if (mesh_.cells.empty()) {
    throw tools::Error(
        in_.path() + ": the file holds no triangle and no quadrilateral. Mesh the surfaces " +
        "(gmsh -2); and where a .geo names physical curves, name its physical surfaces too, or "
        "Gmsh leaves their elements out.");
  }
}

}  // namespace

Mesh read_msh(const std::string& path) { return MshReader(path).read(); }

}  // namespace mesh_import
