// UGRID-1.0 in CF NetCDF: what a file of results is made of, as QGIS opens it as a mesh layer. One
// text for the exports and for the runs that write results while they go on.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "case/MeshRows.hpp"
#include "fields/quantities.hpp"
#include "ugrid/ClassicFile.hpp"
#include "ugrid/DataFile.hpp"
#include "ugrid/Definitions.hpp"

namespace ugrid {

/// A coordinate reference system.
struct Crs {
  int epsg = 0;
  /// How CF describes it, as attributes of a grid mapping: Climate and Forecast Metadata
  /// Conventions 1.8, appendix F. Empty where nothing but the code is known.
  std::vector<std::pair<std::string, std::string>> texts;
  std::vector<std::pair<std::string, double>> numbers;
};

/// What a run recorded and how it is called; empty where nothing has a name.
struct Stations {
  std::vector<std::string> gauges;
  std::vector<double> x, y;  ///< of the gauges, m
  std::vector<std::string> sections;
};

/// What a file says of a run, but for the numbers.
struct Contents {
  std::string title;       ///< name of the run
  std::optional<Crs> crs;  ///< none: none is claimed
  std::string epoch;       ///< date and hour, UTC, of the time 0 s: "2026-05-01 06:00:00"
  std::size_t n_nodes, n_faces;
  std::size_t width;   ///< most nodes of a cell
  bool has_sediments;  ///< the bed moves
  bool has_infiltration;
  bool has_maxima_of_flow;
  bool has_largest_depths;
  bool is_double;  ///< 64 bits for every value of a result, in place of 32
  Stations stations = {};
};

class UgridLayout {
 public:
  explicit UgridLayout(const Contents& contents);

  const Definitions& definitions() const { return definitions_; }

  /// Puts that there is a mesh, and its reference system.
  void put_topology(DataFile& file) const;
  /// Puts the whole mesh.
  void put_mesh(DataFile& file, const cases::MeshRows& rows) const;
  /// The same of a mesh that comes piece by piece.
  void put_rows_of_mesh(ClassicFile& file, const cases::MeshRows& rows) const;
  /// Puts the names of what the run recorded, and the places of the gauges.
  void put_stations(DataFile& file, const Stations& stations) const;
  /// Puts the state of a time t (s) as a record.
  void put_snapshot(DataFile& file, std::size_t record, double t,
                    const fields::CellValues& cells) const;
  /// Puts a time (s), and then cells from the one with a number on, of a record that comes piece by
  /// piece; `cells` has nothing but these.
  void put_time(DataFile& file, std::size_t record, double t) const;
  void put_cells_of_snapshot(ClassicFile& file, std::size_t record, std::size_t first,
                             const fields::CellValues& cells) const;
  /// The same of what is of the whole run.
  void put_cells_of_maxima(ClassicFile& file, std::size_t first,
                           const fields::CellValues& cells) const;
  /// Puts what is of the whole run.
  void put_maxima(DataFile& file, const fields::CellValues& cells) const;
  /// Puts that nothing is known of the whole run.
  void put_no_maxima(ClassicFile& file) const;

  const std::vector<fields::Quantity>& quantities_in_time() const { return in_time_.quantities; }
  const std::vector<fields::Quantity>& maxima() const { return maxima_.quantities; }

 private:
  /// Quantities, of which the first is a variable of this number, and so on.
  struct Results {
    std::size_t first_variable = 0;
    std::vector<fields::Quantity> quantities;
  };

  void define_mesh();
  std::size_t add_coordinate(const char* name, std::size_t dimension, const std::string& axis,
                             const std::string& where);
  void define_crs(const std::optional<Crs>& crs);
  void define_stations(const Stations& stations);
  std::size_t add_names(const std::string& kind, const std::vector<std::string>& names);
  void define_results(const Contents& contents);
  void add_results(std::vector<fields::Quantity> quantities,
                   const std::vector<std::size_t>& dimensions, Results& results);
  std::size_t add_variable(const std::string& name, Type type, std::vector<std::size_t> dimensions);
  void add_attribute(std::size_t variable, const char* name,
                     std::variant<std::string, int, float, double> value);
  void describe(std::size_t variable, const std::string& long_name, const std::string& unit);
  void place(std::size_t variable, const std::string& location);
  void add_grid_mapping(std::size_t variable);

  /// Calls put(variable, first, values) for the values of nodes and of cells, from the one with a
  /// number on, counted as the file does.
  template <class Put>
  void for_each_of_mesh(const cases::MeshRows& rows, const Put& put) const;
  /// Calls put(variable, values) for the values of cells.
  template <class Put>
  void for_each_result(const Results& results, const fields::CellValues& cells,
                       const Put& put) const;

  Definitions definitions_;
  std::size_t n_faces_;
  bool has_crs_, is_double_;
  std::size_t topology_ = 0, crs_ = 0;
  std::size_t node_x_ = 0, node_y_ = 0, node_z_ = 0, face_x_ = 0, face_y_ = 0, face_nodes_ = 0;
  std::size_t time_ = 0;
  std::optional<std::size_t> bed_, station_names_, section_names_;
  std::size_t station_x_ = 0, station_y_ = 0;
  Results in_time_, maxima_;
};

}  // namespace ugrid
