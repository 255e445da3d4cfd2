#include "case/MeshReader.hpp"

#include "case/boundary_kinds.hpp"

namespace utils {

OutOfBoundsMeshReaderException::OutOfBoundsMeshReaderException(int number_of_elements)
    : message_(
          "The Reader tried to read more lines than the number of elements. "
          "The number of elements is: " +
          std::to_string(number_of_elements) + ".") {}

const char* OutOfBoundsMeshReaderException::what() const noexcept { return message_.c_str(); }

MeshReader::MeshReader(const std::string& name, const char* kind, std::size_t tokens_per_record)
    : scanner_(name),
      kind_(kind),
      number_of_elements_(scanner_.read_count("number of records", tokens_per_record)) {}

void MeshReader::begin_next_record() {
  if (number_read_ >= number_of_elements_) {
    throw OutOfBoundsMeshReaderException(number_of_elements_);
  }
  scanner_.begin_record(kind_, number_read_++, number_of_elements_);
}

const std::vector<double>& MeshReader::read_next_node(int n) {
  static const char* const fields[] = {"x", "y", "z"};
  begin_next_record();
  node_values_.clear();
  for (int i = 0; i < n; ++i) {
    node_values_.push_back(scanner_.read_number(i < 3 ? fields[i] : "further coordinate"));
  }
  return node_values_;
}

const std::vector<int>& MeshReader::read_next_cell(int n_nodes) {
  begin_next_record();
  const int k = scanner_.read_integer("number of nodes");
  if (k < 3 || k != static_cast<int>(cell_nodes_.size())) resize_cell(k);
  for (int& node : cell_nodes_) node = scanner_.read_index("node", n_nodes);
  return cell_nodes_;
}

void MeshReader::resize_cell(int number_of_nodes) {
  scanner_.require_count(number_of_nodes, "number of nodes", 1);
  if (number_of_nodes < 3) scanner_.refuse("number of nodes", "at least 3");
  cell_nodes_.resize(static_cast<std::size_t>(number_of_nodes));
}

const EdgeRecord& MeshReader::read_next_edge(int n_nodes, int n_cells) {
  begin_next_record();
  auto& [left, right, node1, node2, code, value, file] = edge_;
  left = scanner_.read_index("left cell", n_cells);
  right = scanner_.read_integer("right cell");
  if (right >= n_cells) {
    scanner_.refuse("right cell",
                    "an index from 0 to " + std::to_string(n_cells - 1) + ", or -1 on a boundary");
  }
  node1 = scanner_.read_index("node 1", n_nodes);
  node2 = scanner_.read_index("node 2", n_nodes);
  code = scanner_.read_integer("boundary code");
  if (edge_code::is_between_cells(code) && right < 0) {
    scanner_.refuse("boundary code", "a boundary condition, since the edge has no right cell");
  }
  if (edge_code::is_between_cells(code) && right == left) {
    scanner_.refuse("boundary code", "two different cells on the sides of an interior edge");
  }
  const cases::BoundaryKind* const kind = cases::boundary_kind(code);
  if (kind != nullptr && kind->has_series()) {
    file = scanner_.read_word("time-series file");
  } else {
    file.clear();
  }
  value = kind != nullptr && kind->has_value() ? scanner_.read_number("imposed value") : 0.0;
  return edge_;
}

}  // namespace utils
