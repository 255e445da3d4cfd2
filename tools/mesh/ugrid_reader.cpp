#include "mesh/ugrid_reader.hpp"

#include <algorithm>
#include <cmath>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

#include "case/reference.hpp"
#include "mesh/NetcdfInput.hpp"
#include "mesh/numbers.hpp"
#include "mesh/small_letters.hpp"
#include "support/Error.hpp"
#include "support/child_process.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

std::vector<std::string> words_of(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

/// By "2D flexible mesh (mixed triangles, quadrilaterals, etc.) topology" of UGRID 1.0.
class UgridReader {
 public:
  explicit UgridReader(const std::string& path) : path_(path), file_(path) {}

  Mesh read() {
    find_topology();
    read_nodes();
    read_faces();
    read_elevations();
    read_system();
    mesh_.zones.push_back({});
    mesh_.zone_of_cell.assign(mesh_.cells.size(), 0);
    mesh_.format = "UGRID in " + file_.format();
    return std::move(mesh_);
  }

 private:
  void find_topology() {
    std::vector<std::string> found;
    for (const std::string& name : file_.variables()) {
      if (file_.text(name, "cf_role") == "mesh_topology" &&
          file_.number(name, "topology_dimension") == 2.0) {
        found.push_back(name);
      }
    }
    if (found.size() == 1) {
      topology_ = found.front();
      return;
    }
    std::string names;
    for (const std::string& name : found) names += (names.empty() ? ": " : ", ") + name;
    throw tools::Error(path_ + ": found " + std::to_string(found.size()) +
                       " meshes of dimension 2" + names +
                       "; expected one variable with the attributes cf_role = \"mesh_topology\" "
                       "and topology_dimension = 2.");
  }

  /// The words of an attribute of the topology that must be there.
  std::vector<std::string> names_in(const std::string& attribute, std::size_t at_least) const {
    const std::vector<std::string> names = words_of(file_.text(topology_, attribute));
    if (names.size() < at_least) {
      file_.refuse(topology_, "its attribute " + attribute + " names " +
                                  utils::counted(names.size(), "variable") + ", expected " +
                                  std::to_string(at_least));
    }
    for (const std::string& name : names) {
      if (!file_.has(name)) {
        file_.refuse(topology_, "its attribute " + attribute + " names " + name +
                                    ", which the file does not have");
      }
    }
    return names;
  }

  void read_nodes() {
    std::vector<std::string> names = names_in("node_coordinates", 2);
    const std::string first = file_.text(names[0], "standard_name");
    if (first == "projection_y_coordinate" || first == "latitude") std::swap(names[0], names[1]);
    x_name_ = names[0];
    const auto x = coordinates(names[0]), y = coordinates(names[1]);
    if (x.size() != y.size()) {
      file_.refuse(names[1], "found " + utils::counted(y.size(), "value") + ", and " +
                                 std::to_string(x.size()) + " of " + names[0]);
    }
    for (std::size_t i = 0; i < x.size(); ++i) mesh_.nodes.push_back({x[i], y[i], 0.0});
    node_dimension_ = file_.dimensions(names[0]).front();
  }

  std::vector<double> coordinates(const std::string& name) const {
    if (file_.shape(name).size() != 1) {
      file_.refuse(name, "found " + utils::counted(file_.shape(name).size(), "dimension") +
                             ", expected one");
    }
    std::vector<double> values = file_.values(name);
    if (values.empty()) file_.refuse(name, "found no node");
    const auto odd = std::find_if(values.begin(), values.end(),
                                  [](double value) { return !std::isfinite(value); });
    if (odd != values.end()) {
      file_.refuse(name, "found no number at node " + std::to_string(odd - values.begin()) +
                             " (counted from 0)");
    }
    return values;
  }

  void read_faces() {
    const std::string name = names_in("face_node_connectivity", 1).front();
    const std::vector<std::size_t> shape = file_.shape(name);
    const std::vector<std::string> dimensions = file_.dimensions(name);
    if (shape.size() != 2) {
      file_.refuse(name, "found " + utils::counted(shape.size(), "dimension") + ", expected two");
    }
    const bool is_turned = file_.text(topology_, "face_dimension") == dimensions[1];
    const std::size_t n_faces = shape[is_turned], width = shape[!is_turned];
    face_dimension_ = dimensions[is_turned];
    if (n_faces == 0) file_.refuse(name, "found no face");
    const double start = file_.number(name, "start_index").value_or(0.0);
    if (start != 0.0 && start != 1.0) {
      file_.refuse(name, "found the start_index " + shown(start) + ", expected 0 or 1");
    }
    const std::vector<double> values = file_.values(name);
    for (std::size_t face = 0; face < n_faces; ++face) {
      std::vector<double> nodes;
      for (std::size_t k = 0; k < width; ++k) {
        nodes.push_back(values[is_turned ? k * n_faces + face : face * width + k]);
      }
      add_face(name, face, nodes, start);
    }
  }

  /// Nodes of a face; what is filled up behind them is no number.
  void add_face(const std::string& name, std::size_t face, std::vector<double> nodes,
                double start) {
    while (!nodes.empty() && std::isnan(nodes.back())) nodes.pop_back();
    const std::string place = "face " + std::to_string(face) + " (counted from 0): found ";
    if (nodes.size() < 3 || nodes.size() > 4) {
      file_.refuse(name, place + utils::counted(nodes.size(), "node") + ", expected 3 or 4");
    }
    Cell cell;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
      const double node = nodes[k] - start, n_nodes = static_cast<double>(mesh_.nodes.size());
      if (!(node >= 0.0 && node < n_nodes) || node != std::floor(node)) {
        file_.refuse(name, place + "the node " + shown(nodes[k]) + ", expected " + shown(start) +
                               " to " + shown(n_nodes - 1.0 + start));
      }
      cell.nodes[k] = static_cast<int>(node);
    }
    mesh_.cells.push_back(cell);
  }

  /// The variable of a location ("node", "face") that looks most like an elevation of the ground;
  /// empty without one.
  std::string elevation_on(const std::string& location, const std::string& dimension,
                           const std::vector<std::string>& endings) const {
    std::string best;
    std::size_t best_rank = endings.size() + 1;
    for (const std::string& name : file_.variables()) {
      if (file_.dimensions(name) != std::vector<std::string>{dimension}) continue;
      const std::string mesh = file_.text(name, "mesh"), at = file_.text(name, "location");
      if ((!mesh.empty() && mesh != topology_) || (!at.empty() && at != location)) continue;
      std::size_t rank = 0;
      if (file_.text(name, "standard_name") != "altitude") {
        const std::string small = small_letters(name);
        while (rank < endings.size() && !small.ends_with(endings[rank])) ++rank;
        ++rank;
      }
      if (rank >= best_rank) continue;
      best = name;
      best_rank = rank;
    }
    return best;
  }

  /// m, upwards; empty where some values are missing, which is said.
  std::vector<double> elevations_of(const std::string& name) {
    std::vector<double> values = file_.values(name);
    const auto is_missing = [](double value) { return !std::isfinite(value); };
    const auto n_missing = std::count_if(values.begin(), values.end(), is_missing);
    if (n_missing > 0) {
      mesh_.remarks.push_back("The variable " + name + " is left out: it lacks " +
                              std::to_string(n_missing) + " of " +
                              utils::counted(values.size(), "value") + ".");
      return {};
    }
    if (file_.text(name, "positive") == "down") {
      for (double& value : values) value = -value;
    }
    return values;
  }

  void read_elevations() {
    const std::string of_nodes = elevation_on("node", node_dimension_, {"node_z", "netnode_z"});
    const std::string of_faces =
        elevation_on("face", face_dimension_, {"_bed", "face_z", "flowelem_bl"});
    std::vector<double> z, bed;
    if (!of_nodes.empty()) z = elevations_of(of_nodes);
    if (!of_faces.empty()) bed = elevations_of(of_faces);
    for (std::size_t i = 0; i < z.size(); ++i) mesh_.nodes[i].z = z[i];
    if (!z.empty()) {
      mesh_.remarks.push_back("The variable " + of_nodes + " gives the nodes their elevation.");
    }
    if (!bed.empty() && (z.empty() || !is_mean_of_nodes(bed))) {
      mesh_.remarks.push_back("The variable " + of_faces + " gives the cells a bed of their own.");
      mesh_.bed_of_cell = std::move(bed);
    } else if (z.empty()) {
      mesh_.remarks.push_back("The file holds no elevation: all of them are 0.");
    }
  }

  bool is_mean_of_nodes(const std::vector<double>& bed) const {
    constexpr double rounding = 1e-6;  // m
    for (std::size_t i = 0; i < bed.size(); ++i) {
      if (std::fabs(mesh_.center(mesh_.cells[i]).z - bed[i]) > rounding) return false;
    }
    return true;
  }

  /// The code may be a number, or "EPSG:32632", or "32632"; another hint says nothing.
  void read_system() {
    const std::string name = file_.text(x_name_, "grid_mapping");
    if (!file_.has(name)) return;
    const std::string words = file_.text(name, "epsg");
    mesh_.epsg = cases::epsg_of(words);
    if (!mesh_.epsg) mesh_.epsg = cases::epsg_of("EPSG:" + words);
    if (!file_.has_number(name, "epsg")) return;
    const auto epsg = file_.number(name, "epsg");
    if (epsg && *epsg >= 1.0 && *epsg < 1e6) mesh_.epsg = static_cast<int>(*epsg);
  }

  std::string path_;
  NetcdfInput file_;
  std::string topology_, x_name_, node_dimension_, face_dimension_;
  Mesh mesh_;
};

}  // namespace

// Intended: read twice, at first in a process of its own, since the netCDF library crashes on some
// damaged files.
Mesh read_ugrid(const std::string& path) {
  const auto read = [&path] {
    try {
      return UgridReader(path).read();
    } catch (const std::bad_alloc&) {
      throw tools::Error(path + ": there is not enough memory for this mesh.");
    }
  };
  const auto fault = tools::try_apart("to read NetCDF", read);
  if (!fault) {
    throw tools::Error(path + ": the netCDF library crashes on this file; expected a whole one.");
  }
  if (!fault->empty()) throw tools::Error(*fault);
  return read();
}

}  // namespace mesh_import
