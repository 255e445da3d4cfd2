#include "case/MeshReader.hpp"

#include "case/mesh_records.hpp"

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
  begin_next_record();
  node_values_.resize(static_cast<std::size_t>(n));
  cases::read_node(scanner_, node_values_);
  return node_values_;
}

const std::vector<int>& MeshReader::read_next_cell(int n_nodes) {
  begin_next_record();
  cases::read_cell(scanner_, n_nodes, cell_nodes_);
  return cell_nodes_;
}

const EdgeRecord& MeshReader::read_next_edge(int n_nodes, int n_cells) {
  begin_next_record();
  cases::EdgeRecord edge;
  cases::read_edge(scanner_, n_nodes, n_cells, edge, [](int) {});
  edge_ = {edge.left, edge.right, edge.node1, edge.node2, edge.code, edge.value, edge.file};
  return edge_;
}

}  // namespace utils
