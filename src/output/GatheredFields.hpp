// Values of fields of all cells, gathered at one time and written later as rows of a table.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "case/Mesh.hpp"
#include "fields/Flow.hpp"
#include "utils/CellTable.hpp"
#include "utils/WriterThread.hpp"

class GatheredFields {
 public:
  /// The mesh must outlive it.
  GatheredFields(const cases::Mesh& mesh, fields::RowsRequest request);

  /// Takes the present values, once all earlier ones are written. The flow must outlive what is
  /// done with them.
  void gather(const fields::Flow& flow);
  /// Writes them behind a header, a row per cell; false if the file is not complete, which has been
  /// said.
  bool write(const std::string& name, const std::string& header);
  /// Lets a writer do so.
  void hand_over(utils::WriterThread& writer, const std::string& name, const std::string& header);

 private:
  /// All rows of this process, and then those of others as they come.
  utils::WriterThread::Pieces pieces(const std::string& name, const std::string& header);
  std::optional<utils::WriterThread::Piece> next_piece(const std::string& header);
  /// The same of a file that several processes write.
  std::optional<utils::WriterThread::Piece> next_shared_piece(const std::string& header);

  const cases::Mesh& mesh_;
  fields::RowsRequest request_;
  const fields::Flow* flow_ = nullptr;  ///< of the rows
  std::unique_ptr<fields::Rows> rows_;
  std::optional<utils::CellTable> table_;    ///< that is being written
  std::optional<utils::SharedPart> shared_;  ///< of the table; nothing: this process writes it
};
