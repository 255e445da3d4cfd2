// The maxima of the flow, a row per cell, in place of those of an earlier time.
#pragma once

#include <string>

#include "output/GatheredFields.hpp"
#include "utils/WriterThread.hpp"

class MaximaFile {
 public:
  /// The mesh must outlive it.
  MaximaFile(std::string name, const cases::Mesh& mesh);

  /// Takes the maxima up to now, a time in s, and hands them to the writer.
  void WriteMeasure(fields::Flow& flow, double t);
  /// Waits until they are written.
  void wait() { writer_.wait(); }
  /// Whether the run must end, which has been said.
  bool has_failed() const { return writer_.has_failed(); }

 private:
  std::string name_;
  GatheredFields values_;       ///< of the columns
  utils::WriterThread writer_;  ///< uses all that stands above
};
