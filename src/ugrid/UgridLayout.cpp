#include "ugrid/UgridLayout.hpp"

#include <algorithm>
#include <limits>

namespace ugrid {

namespace {

using fields::Quantity;

// Numbers of the dimensions.
constexpr std::size_t nodes = 0, faces = 1, corners = 2, times = 3;

/// Every variable has a name of its own: a second one alike would be dropped. "name, x-component"
/// makes a vector of two.
std::string long_name_of(const Quantity& quantity) {
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

std::size_t longest(const std::vector<std::string>& names) {
  std::size_t length = 1;
  for (const std::string& name : names) length = std::max(length, name.size());
  return length;
}

/// The names one after the other, each filled up to the longest.
std::string rows_of(const std::vector<std::string>& names) {
  const std::size_t length = longest(names);
  std::string rows;
  for (std::string name : names) {
    name.resize(length, '\0');
    rows += name;
  }
  return rows;
}

}  // namespace

// What a reader of UGRID looks for. Readers differ in what they insist on; the comments say what
// the mesh library of QGIS does with a file that lacks it.
UgridLayout::UgridLayout(const Contents& contents)
    : n_faces_(contents.n_faces), has_crs_(contents.crs), is_double_(contents.is_double) {
  definitions_.dimensions = {{"Mesh2d_nNodes", contents.n_nodes},
                             {"Mesh2d_nFaces", contents.n_faces},
                             {"Mesh2d_nMax_face_nodes", contents.width},
                             {"time", 0}};  // by another name, all results are lost
  definitions_.attributes = {
      {"Conventions", "CF-1.8 UGRID-1.0"}, {"title", contents.title}, {"source", "Quillmere"}};
  define_mesh();
  define_crs(contents.crs);
  define_results(contents);
  define_stations(contents.stations);
}

void UgridLayout::define_mesh() {
  topology_ = add_variable("Mesh2d", Type::integer, {});
  add_attribute(topology_, "cf_role", "mesh_topology");
  add_attribute(topology_, "long_name", "topology of the mesh");
  add_attribute(topology_, "topology_dimension", 2);
  add_attribute(topology_, "node_coordinates", "Mesh2d_node_x Mesh2d_node_y");
  add_attribute(topology_, "face_node_connectivity", "Mesh2d_face_nodes");
  add_attribute(topology_, "face_dimension", "Mesh2d_nFaces");  // else rows and columns are guessed
  add_attribute(topology_, "face_coordinates", "Mesh2d_face_x Mesh2d_face_y");

  node_x_ = add_coordinate("Mesh2d_node_x", nodes, "x", "nodes");
  node_y_ = add_coordinate("Mesh2d_node_y", nodes, "y", "nodes");
  face_x_ = add_coordinate("Mesh2d_face_x", faces, "x", "centres of the cells");
  face_y_ = add_coordinate("Mesh2d_face_y", faces, "y", "centres of the cells");

  node_z_ = add_variable("Mesh2d_node_z", Type::double_precision, {nodes});
  add_attribute(node_z_, "standard_name", "altitude");  // makes it the bed of the layer
  add_attribute(node_z_, "long_name", "bed elevation at the nodes");
  add_attribute(node_z_, "units", "m");
  place(node_z_, "node");

  face_nodes_ = add_variable("Mesh2d_face_nodes", Type::integer, {faces, corners});
  add_attribute(face_nodes_, "cf_role", "face_node_connectivity");
  add_attribute(face_nodes_, "long_name", "nodes of the cells, counter-clockwise");
  add_attribute(face_nodes_, "start_index", 0);  // without it the whole file is refused
  add_attribute(face_nodes_, "_FillValue", cases::MeshRows::no_node);
}

std::size_t UgridLayout::add_coordinate(const char* name, std::size_t dimension,
                                        const std::string& axis, const std::string& where) {
  const std::size_t variable = add_variable(name, Type::double_precision, {dimension});
  add_attribute(variable, "standard_name", "projection_" + axis + "_coordinate");
  add_attribute(variable, "long_name", axis + " of the " + where);
  add_attribute(variable, "units", "m");
  add_grid_mapping(variable);
  return variable;
}

void UgridLayout::define_crs(const std::optional<Crs>& crs) {
  if (!crs) return;
  crs_ = add_variable("crs", Type::integer, {});
  add_attribute(crs_, "long_name", "coordinate reference system");
  add_attribute(crs_, "EPSG_code", "EPSG:" + std::to_string(crs->epsg));
  add_attribute(crs_, "epsg", crs->epsg);
  for (const auto& [name, text] : crs->texts) add_attribute(crs_, name.c_str(), text);
  for (const auto& [name, number] : crs->numbers) add_attribute(crs_, name.c_str(), number);
}

void UgridLayout::define_results(const Contents& contents) {
  time_ = add_variable("time", Type::double_precision, {times});
  add_attribute(time_, "standard_name", "time");
  add_attribute(time_, "long_name", "time");
  // Without "since" the values are taken for hours.
  add_attribute(time_, "units", "seconds since " + contents.epoch);
  add_attribute(time_, "calendar", "standard");

  if (!contents.has_sediments) {
    bed_ = add_variable("Mesh2d_bed", Type::double_precision, {faces});
    describe(*bed_, "bed elevation", "m");
  }
  add_results(fields::dataset_quantities(contents.has_sediments, contents.has_infiltration),
              {times, faces}, in_time_);
  std::vector<Quantity> maxima;
  const auto add = [&](const std::vector<Quantity>& more) {
    maxima.insert(maxima.end(), more.begin(), more.end());
  };
  if (contents.has_maxima_of_flow) add(fields::dataset_maxima_of_flow());
  if (contents.has_largest_depths) add(fields::dataset_largest_depths(contents.has_sediments));
  add_results(std::move(maxima), {faces}, maxima_);
}

/// A row of characters for each name, and the dimensions of both, which are new: the variable.
std::size_t UgridLayout::add_names(const std::string& kind, const std::vector<std::string>& names) {
  const std::size_t dimension = definitions_.dimensions.size();
  definitions_.dimensions.push_back({kind, names.size()});
  definitions_.dimensions.push_back({kind + "_name_length", longest(names)});
  const std::size_t variable =
      add_variable(kind + "_name", Type::character, {dimension, dimension + 1});
  add_attribute(variable, "_Encoding", "utf-8");
  return variable;
}

/// Gauges are stations by the conventions CF 1.8, section 9: readers find their names by the role.
void UgridLayout::define_stations(const Stations& stations) {
  if (!stations.gauges.empty()) {
    const std::size_t dimension = definitions_.dimensions.size();
    station_names_ = add_names("station", stations.gauges);
    add_attribute(*station_names_, "cf_role", "timeseries_id");
    add_attribute(*station_names_, "long_name", "names of the gauges");
    station_x_ = add_coordinate("station_x", dimension, "x", "gauges");
    station_y_ = add_coordinate("station_y", dimension, "y", "gauges");
  }
  if (!stations.sections.empty()) {
    section_names_ = add_names("section", stations.sections);
    add_attribute(*section_names_, "long_name", "names of the sections");
  }
}

void UgridLayout::put_stations(DataFile& file, const Stations& stations) const {
  if (station_names_) {
    file.put(*station_names_, rows_of(stations.gauges));
    file.put(station_x_, 0, std::span<const double>(stations.x));
    file.put(station_y_, 0, std::span<const double>(stations.y));
  }
  if (section_names_) file.put(*section_names_, rows_of(stations.sections));
}

void UgridLayout::add_results(std::vector<Quantity> quantities,
                              const std::vector<std::size_t>& dimensions, Results& results) {
  results.first_variable = definitions_.variables.size();
  results.quantities = std::move(quantities);
  for (const Quantity& quantity : results.quantities) {
    const std::size_t variable =
        add_variable("Mesh2d_" + fields::variable_name(quantity),
                     is_double_ ? Type::double_precision : Type::single_precision, dimensions);
    if (is_double_) {
      add_attribute(variable, "_FillValue", std::numeric_limits<double>::quiet_NaN());
    } else {
      add_attribute(variable, "_FillValue", std::numeric_limits<float>::quiet_NaN());
    }
    describe(variable, long_name_of(quantity), quantity.unit);
  }
}

std::size_t UgridLayout::add_variable(const std::string& name, Type type,
                                      std::vector<std::size_t> dimensions) {
  definitions_.variables.push_back({name, type, std::move(dimensions), {}});
  return definitions_.variables.size() - 1;
}

void UgridLayout::add_attribute(std::size_t variable, const char* name,
                                std::variant<std::string, int, float, double> value) {
  definitions_.variables[variable].attributes.push_back({name, std::move(value)});
}

void UgridLayout::describe(std::size_t variable, const std::string& long_name,
                           const std::string& unit) {
  add_attribute(variable, "long_name", long_name);
  add_attribute(variable, "units", unit);
  place(variable, "face");
}

void UgridLayout::place(std::size_t variable, const std::string& location) {
  add_attribute(variable, "mesh", "Mesh2d");
  add_attribute(variable, "location", location);
  add_attribute(variable, "coordinates", "Mesh2d_" + location + "_x Mesh2d_" + location + "_y");
  add_grid_mapping(variable);
}

void UgridLayout::add_grid_mapping(std::size_t variable) {
  if (has_crs_) add_attribute(variable, "grid_mapping", "crs");
}

void UgridLayout::put_topology(DataFile& file) const {
  const int none[] = {0};  // these two are there for their attributes
  file.put(topology_, 0, std::span<const int>(none));
  if (has_crs_) file.put(crs_, 0, std::span<const int>(none));
}

template <class Put>
void UgridLayout::for_each_of_mesh(const cases::MeshRows& rows, const Put& put) const {
  put(node_x_, rows.first_node, std::span(rows.node_x));
  put(node_y_, rows.first_node, std::span(rows.node_y));
  put(node_z_, rows.first_node, std::span(rows.node_bed));
  put(face_x_, rows.first_cell, std::span(rows.cell_x));
  put(face_y_, rows.first_cell, std::span(rows.cell_y));
  put(face_nodes_, rows.first_cell * rows.width, std::span(rows.cell_nodes));
  if (bed_) put(*bed_, rows.first_cell, std::span(rows.cell_bed));
}

void UgridLayout::put_mesh(DataFile& file, const cases::MeshRows& rows) const {
  for_each_of_mesh(
      rows, [&](std::size_t variable, std::size_t, auto values) { file.put(variable, 0, values); });
}

void UgridLayout::put_rows_of_mesh(ClassicFile& file, const cases::MeshRows& rows) const {
  for_each_of_mesh(rows, [&](std::size_t variable, std::size_t first, auto values) {
    file.put_part(variable, 0, first, values);
  });
}

namespace {

template <class Real, class Put>
void put_each(std::size_t variable, const std::vector<fields::Quantity>& quantities,
              const fields::CellValues& cells, const Put& put) {
  std::vector<Real> values;
  for (const fields::Quantity& quantity : quantities) {
    fields::evaluate(quantity, cells, values);
    put(variable++, std::span<const Real>(values));
  }
}

}  // namespace

template <class Put>
void UgridLayout::for_each_result(const Results& results, const fields::CellValues& cells,
                                  const Put& put) const {
  if (is_double_) {
    put_each<double>(results.first_variable, results.quantities, cells, put);
  } else {
    put_each<float>(results.first_variable, results.quantities, cells, put);
  }
}

void UgridLayout::put_snapshot(DataFile& file, std::size_t record, double t,
                               const fields::CellValues& cells) const {
  put_time(file, record, t);
  for_each_result(in_time_, cells,
                  [&](std::size_t variable, auto values) { file.put(variable, record, values); });
}

void UgridLayout::put_time(DataFile& file, std::size_t record, double t) const {
  file.put(time_, record, std::span<const double>(&t, 1));
}

void UgridLayout::put_cells_of_snapshot(ClassicFile& file, std::size_t record, std::size_t first,
                                        const fields::CellValues& cells) const {
  for_each_result(in_time_, cells, [&](std::size_t variable, auto values) {
    file.put_part(variable, record, first, values);
  });
}

void UgridLayout::put_cells_of_maxima(ClassicFile& file, std::size_t first,
                                      const fields::CellValues& cells) const {
  for_each_result(maxima_, cells, [&](std::size_t variable, auto values) {
    file.put_part(variable, 0, first, values);
  });
}

void UgridLayout::put_maxima(DataFile& file, const fields::CellValues& cells) const {
  for_each_result(maxima_, cells,
                  [&](std::size_t variable, auto values) { file.put(variable, 0, values); });
}

void UgridLayout::put_no_maxima(ClassicFile& file) const {
  const auto put_everywhere = [&](auto nan) {
    constexpr std::size_t most = 1 << 16;
    const std::vector<decltype(nan)> values(std::min(n_faces_, most), nan);
    for (std::size_t k = 0; k < maxima_.quantities.size(); ++k) {
      for (std::size_t first = 0; first < n_faces_; first += most) {
        const std::size_t count = std::min(n_faces_ - first, most);
        file.put_part(maxima_.first_variable + k, 0, first, std::span(values).first(count));
      }
    }
  };
  if (is_double_) {
    put_everywhere(std::numeric_limits<double>::quiet_NaN());
  } else {
    put_everywhere(std::numeric_limits<float>::quiet_NaN());
  }
}

}  // namespace ugrid
