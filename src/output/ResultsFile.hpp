// The flow at listed times, and the largest values of the run, in one NetCDF file that grows while
// the run goes on.
#pragma once

#include <cmath>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/DataFile.hpp"
#include "fields/Flow.hpp"
#include "fields/ListedMesh.hpp"
#include "output/OutputPositions.hpp"
#include "ugrid/ClassicFile.hpp"
#include "ugrid/UgridLayout.hpp"
#include "utils/WritableFile.hpp"
#include "utils/WriterThread.hpp"

/// It takes its name with its first snapshot; an earlier file is there until then. Whoever opens it
/// finds all snapshots that were written.
class ResultsFile {
 public:
  /// Of the file that `data` asks for, with snapshots at `times` (s). Ends the run with a message
  /// where these do not increase, or no file can be written. The case, whose mesh may be elsewhere,
  /// must outlive it. The file comes by begin() or go_on().
  ResultsFile(const cases::DataFile& data, std::vector<double> times, const cases::Case& contents,
              const fields::ListedMesh& mesh);
  /// Removes a file that has not got its name.
  ~ResultsFile();
  ResultsFile(const ResultsFile&) = delete;
  ResultsFile& operator=(const ResultsFile&) = delete;

  /// Creates the file, with all but results, or ends the run with a message.
  void begin(fields::ListedMesh& mesh);
  /// Leaves out snapshots of a run whose outputs are done up to a time (s).
  void skip_to(double done);
  /// Ends the run with a message where the file of an earlier run is not there any more as it was.
  void require(const ResultsPosition& position) const;
  /// Goes on in the file of an earlier run, whose outputs are done up to a time (s).
  void go_on(const ResultsPosition& position, double done);
  ResultsPosition position() const;

  /// Whether the next snapshot is due at time t, within a tolerance (s).
  bool CheckTime(double t, double tolerance) const { return t >= next_time() - tolerance; }
  /// Of the next snapshot; infinite behind the last one, s.
  double next_time() const { return next_ < times_.size() ? times_[next_] : HUGE_VAL; }
  /// Takes the present flow as the next snapshot and hands it to the writer.
  void WriteMeasure(const fields::Flow& flow);
  /// Takes the largest values of the run and hands them to the writer.
  void finish(const fields::Flow& flow);
  /// Waits until all is written.
  void wait() { writer_.wait(); }
  /// Whether the run must end, which has been said.
  bool has_failed() const { return writer_.has_failed(); }

 private:
  void gather(const std::vector<fields::Quantity>& quantities, const fields::Flow& flow);
  /// Of a snapshot at a time (s), or, without one, of the largest values: the cells of this
  /// process, and then those of others as they come.
  utils::WriterThread::Pieces pieces(std::optional<double> t);
  std::optional<utils::WriterThread::Piece> next_piece(std::optional<double> t);
  void put_first_cells(std::optional<double> t);
  /// Puts the cells of rows of numbers, of which the last may lack its end.
  void put_next_cells(bool is_snapshot, const std::string& bytes);
  void put_cells(bool is_snapshot, const fields::Columns& columns, const std::vector<double>& bed);
  bool finish_result(bool is_snapshot);
  /// Lets readers see so many snapshots, and all else that was put.
  bool show(std::uint64_t records);
  bool put_in_place();

  const cases::Case& case_;
  std::string name_;
  std::string place_;          ///< the name, or that of the file that a link of the name leads to
  std::vector<double> times_;  ///< s
  std::size_t next_ = 0;
  ugrid::UgridLayout layout_;
  ugrid::ClassicLayout bytes_;
  std::unique_ptr<fields::ValueRows> rows_;
  const fields::Flow* flow_ = nullptr;  ///< of the rows
  std::vector<fields::Field> fields_;   ///< that were gathered
  // For the writer.
  std::size_t cells_ = 0;  ///< of the present result that were put
  utils::Bytes rest_;      ///< beginning of a row
  utils::WritableFile file_;
  std::optional<ugrid::ClassicFile> classic_;
  bool is_in_place_ = false;
  std::uint64_t records_ = 0;  ///< snapshots handed to the writer
  mutable std::mutex mutex_;
  WrittenRecords written_;      ///< by the writer
  utils::WriterThread writer_;  ///< uses all that stands above
};
