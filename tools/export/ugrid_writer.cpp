#include "export/ugrid_writer.hpp"

#include <algorithm>
#include <limits>
#include <vector>

#include "export/MaximaTable.hpp"
#include "export/NetcdfFile.hpp"
#include "export/SnapshotReader.hpp"
#include "export/quantities.hpp"
#include "support/PartialFile.hpp"

namespace exports {

namespace {

/// Writes what a reader of UGRID looks for. Readers differ in what they insist on; the comments say
/// what the mesh library of QGIS does with a file that lacks it.
class UgridWriter {
 public:
  UgridWriter(const CaseResults& results, const UgridOptions& options, const std::string& part)
      : results_(results),
        options_(options),
        quantities_(dataset_quantities(results.files)),
        max_depth_(results.max_depth()),
        file_(part, options.output, options.is_compressed) {
    define_dimensions();
    define_mesh();
    define_crs();
    define_results();
    define_file();
    file_.end_definitions();
  }

  void write() {
    put_mesh();
    if (bed_ >= 0) file_.put(bed_, results_.bed.data());
    if (max_depth_)
      file_.put(max_depth_variable_,
                std::vector<float>(max_depth_->begin(), max_depth_->end()).data());
    if (max_level_variable_ >= 0) {
      file_.put(max_level_variable_, max_level(results_, *max_depth_).data());
    }
    if (!maxima_variables_.empty()) {
      const MaximaTable maxima = read_maxima(results_);
      for (std::size_t k = 0; k < maxima_variables_.size(); ++k) {
        file_.put(maxima_variables_[k], maxima[maxima_quantities[k]].data());
      }
    }
    Snapshot snapshot;
    std::vector<float> values;
    for (std::size_t record = 0; record < results_.snapshots.size(); ++record) {
      read_snapshot(results_, results_.snapshots[record], snapshot);
      file_.put_record(time_variable_, record, snapshot.time);
      for (std::size_t k = 0; k < quantities_.size(); ++k) {
        evaluate(quantities_[k], results_, snapshot.columns, values);
        file_.put_record(variables_[k], record, values);
      }
    }
    file_.close();
    snapshot.below_zero.tell();
  }

 private:
  const Mesh& mesh() const { return results_.mesh; }

  void define_dimensions() {
    nodes_ = file_.add_dimension("Mesh2d_nNodes", mesh().n_nodes());
    faces_ = file_.add_dimension("Mesh2d_nFaces", mesh().n_cells());
    corners_ = file_.add_dimension("Mesh2d_nMax_face_nodes",
                                   static_cast<std::size_t>(mesh().most_nodes_per_cell()));
    time_ = file_.add_dimension("time", NC_UNLIMITED);  // by another name, all results are lost
  }

  void define_mesh() {
    topology_ = file_.add_variable("Mesh2d", NC_INT, {});
    file_.add_text(topology_, "cf_role", "mesh_topology");
    file_.add_text(topology_, "long_name", "topology of the mesh");
    file_.add_integer(topology_, "topology_dimension", 2);
    file_.add_text(topology_, "node_coordinates", "Mesh2d_node_x Mesh2d_node_y");
    file_.add_text(topology_, "face_node_connectivity", "Mesh2d_face_nodes");
    file_.add_text(topology_, "face_dimension",
                   "Mesh2d_nFaces");  // else rows and columns are guessed
    file_.add_text(topology_, "face_coordinates", "Mesh2d_face_x Mesh2d_face_y");

    node_x_ = add_coordinate("Mesh2d_node_x", nodes_, "x", "nodes");
    node_y_ = add_coordinate("Mesh2d_node_y", nodes_, "y", "nodes");
    face_x_ = add_coordinate("Mesh2d_face_x", faces_, "x", "centres of the cells");
    face_y_ = add_coordinate("Mesh2d_face_y", faces_, "y", "centres of the cells");

    node_z_ = file_.add_variable("Mesh2d_node_z", NC_DOUBLE, {nodes_});
    file_.add_text(node_z_, "standard_name", "altitude");  // makes it the bed of the layer
    file_.add_text(node_z_, "long_name", "bed elevation at the nodes");
    file_.add_text(node_z_, "units", "m");
    place(node_z_, "node");

    face_nodes_ = file_.add_variable("Mesh2d_face_nodes", NC_INT, {faces_, corners_});
    file_.add_text(face_nodes_, "cf_role", "face_node_connectivity");
    file_.add_text(face_nodes_, "long_name", "nodes of the cells, counter-clockwise");
    file_.add_integer(face_nodes_, "start_index", 0);  // without it the whole file is refused
    file_.add_integer(face_nodes_, "_FillValue", no_node);
  }

  int add_coordinate(const char* name, int dimension, const std::string& axis,
                     const std::string& where) {
    const int variable = file_.add_variable(name, NC_DOUBLE, {dimension});
    file_.add_text(variable, "standard_name", "projection_" + axis + "_coordinate");
    file_.add_text(variable, "long_name", axis + " of the " + where);
    file_.add_text(variable, "units", "m");
    if (options_.crs) file_.add_text(variable, "grid_mapping", "crs");
    return variable;
  }

  void define_crs() {
    if (!options_.crs) return;
    crs_ = file_.add_variable("crs", NC_INT, {});
    file_.add_text(crs_, "long_name", "coordinate reference system");
    file_.add_text(crs_, "EPSG_code", "EPSG:" + std::to_string(options_.crs->epsg));
    file_.add_integer(crs_, "epsg", options_.crs->epsg);
    for (const auto& [name, text] : options_.crs->texts) file_.add_text(crs_, name.c_str(), text);
    for (const auto& [name, value] : options_.crs->numbers) {
      file_.add_number(crs_, name.c_str(), value);
    }
  }

  void define_results() {
    time_variable_ = file_.add_variable("time", NC_DOUBLE, {time_});
    file_.add_text(time_variable_, "standard_name", "time");
    file_.add_text(time_variable_, "long_name", "time");
    // Without "since" the values are taken for hours.
    file_.add_text(time_variable_, "units", "seconds since " + options_.epoch);
    file_.add_text(time_variable_, "calendar", "standard");

    if (!results_.files.has_sediment) {
      bed_ = file_.add_variable("Mesh2d_bed", NC_DOUBLE, {faces_});
      describe(bed_, "bed elevation", "m");
    }
    for (const Quantity& quantity : quantities_) {
      variables_.push_back(
          add_result("Mesh2d_" + fields::variable_name(quantity), {time_, faces_}));
      describe(variables_.back(), long_name(quantity), quantity.unit);
    }
    if (results_.has_maxima()) {
      for (const MaximaQuantity& quantity : maxima_quantities) {
        maxima_variables_.push_back(add_result("Mesh2d_" + std::string(quantity.name), {faces_}));
        describe(maxima_variables_.back(), quantity.long_name, quantity.unit);
      }
    }
    if (!max_depth_) return;
    max_depth_variable_ = add_result("Mesh2d_max_depth", {faces_});
    describe(max_depth_variable_, "largest depth", "m");
    if (results_.files.has_sediment) return;
    max_level_variable_ = add_result("Mesh2d_max_level", {faces_});
    describe(max_level_variable_, "largest water level", "m");
  }

  /// Every variable has a name of its own: a second one alike would be dropped. "name, x-component"
  /// makes a vector of two.
  static std::string long_name(const Quantity& quantity) {
    switch (quantity.part) {
      case Quantity::Part::x:
        return quantity.long_name + ", x-component";
      case Quantity::Part::y:
        return quantity.long_name + ", y-component";
      case Quantity::Part::scalar:
        break;
    }
    return quantity.long_name;
  }

  int add_result(const std::string& name, const std::vector<int>& dimensions) {
    const int variable = file_.add_variable(name, NC_FLOAT, dimensions);
    file_.add_fill_value(variable, std::numeric_limits<float>::quiet_NaN());
    file_.compress(variable, dimensions, mesh().n_cells());
    return variable;
  }

  void describe(int variable, const std::string& long_name, const std::string& unit) {
    file_.add_text(variable, "long_name", long_name);
    file_.add_text(variable, "units", unit);
    place(variable, "face");
  }

  void place(int variable, const std::string& location) {
    file_.add_text(variable, "mesh", "Mesh2d");
    file_.add_text(variable, "location", location);
    file_.add_text(variable, "coordinates", "Mesh2d_" + location + "_x Mesh2d_" + location + "_y");
    if (options_.crs) file_.add_text(variable, "grid_mapping", "crs");
  }

  void define_file() {
    file_.add_text(NC_GLOBAL, "Conventions", "CF-1.8 UGRID-1.0");
    file_.add_text(NC_GLOBAL, "title", results_.files.title);
    file_.add_text(NC_GLOBAL, "source", "Quillmere");
  }

  void put_mesh() {
    constexpr int none = 0;  // these two are there for their attributes
    file_.put(topology_, &none);
    if (crs_ >= 0) file_.put(crs_, &none);
    file_.put(node_x_, mesh().x.data());
    file_.put(node_y_, mesh().y.data());
    file_.put(node_z_, results_.node_bed().data());
    file_.put(face_x_, mesh().center_x.data());
    file_.put(face_y_, mesh().center_y.data());
    const std::size_t width = static_cast<std::size_t>(mesh().most_nodes_per_cell());
    std::vector<int> table(width * mesh().n_cells(), no_node);
    for (std::size_t i = 0; i < mesh().n_cells(); ++i) {
      const auto cell = mesh().nodes_of(i);
      std::copy(cell.begin(), cell.end(), table.begin() + static_cast<std::ptrdiff_t>(i * width));
    }
    file_.put(face_nodes_, table.data());
  }

  static constexpr int no_node = -1;

  const CaseResults& results_;
  const UgridOptions& options_;
  std::vector<Quantity> quantities_;
  std::optional<std::vector<double>> max_depth_;
  NetcdfFile file_;
  int nodes_ = 0, faces_ = 0, corners_ = 0, time_ = 0;
  int topology_ = 0, crs_ = -1;
  int node_x_ = 0, node_y_ = 0, node_z_ = 0, face_x_ = 0, face_y_ = 0, face_nodes_ = 0;
  int time_variable_ = 0, bed_ = -1, max_depth_variable_ = -1, max_level_variable_ = -1;
  std::vector<int> variables_;         ///< of the quantities
  std::vector<int> maxima_variables_;  ///< empty without maxima
};

}  // namespace

void write_ugrid(const CaseResults& results, const UgridOptions& options) {
  tools::PartialFile file(options.output);
  UgridWriter(results, options, file.part()).write();
  file.commit();
}

}  // namespace exports
