// Reads the records of a mesh file: nodes, cells or edges.
#pragma once

#include <exception>
#include <string>
#include <tuple>
#include <vector>

#include "utils/TextScanner.hpp"

namespace utils {

/// More records were asked for than the file announces.
class OutOfBoundsMeshReaderException : public std::exception {
 public:
  explicit OutOfBoundsMeshReaderException(int number_of_elements);
  const char* what() const noexcept override;

 private:
  std::string message_;
};

/// left cell, right cell, node 1, node 2, boundary code, imposed value, time-series file.
using EdgeRecord = std::tuple<int, int, int, int, int, double, std::string>;

class MeshReader {
 public:
  /// Opens the file and reads the number of records. `kind` ("node", "cell", "edge") names a record
  /// in messages; `tokens_per_record` is the least number of values that a record holds.
  MeshReader(const std::string& name, const char* kind, std::size_t tokens_per_record);

  int get_number_of_elements() const { return number_of_elements_; }

  /// Coordinates of the next node, and further numbers up to n. They hold until the next call.
  const std::vector<double>& read_next_node(int n);
  /// Node indices of the next cell, each below n_nodes; a cell has at least three. They hold until
  /// the next call.
  const std::vector<int>& read_next_cell(int n_nodes);
  /// The next edge, with indices below n_nodes and n_cells; a negative right cell is a boundary. It
  /// holds until the next call.
  const EdgeRecord& read_next_edge(int n_nodes, int n_cells);

  /// Ends the run: the record read last cannot be computed with.
  [[noreturn]] void refuse_record(const std::string& why) { scanner_.refuse_record(why); }

 private:
  void begin_next_record();

  TextScanner scanner_;
  const char* kind_;
  int number_of_elements_;
  std::vector<double> node_values_;
  std::vector<int> cell_nodes_;
  EdgeRecord edge_;
  int number_read_ = 0;
};

}  // namespace utils
