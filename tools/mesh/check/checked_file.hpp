// A text file of a case, whose errors become findings.
#pragma once

#include <string>

#include "case/CollectingSource.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Tells findings what is wrong in a file.
class FileFindings : public cases::Diagnostics {
 public:
  /// `key` is the place in the data file that names the file.
  FileFindings(std::string name, std::string key, Findings& findings)
      : name_(std::move(name)), key_(std::move(key)), findings_(findings) {}

  void error(const std::string& message) override;
  void warn(const std::string& message) override { findings_.warning("file", message); }

 protected:
  bool is_open_ = false;

 private:
  std::string name_, key_;
  Findings& findings_;
};

class CheckedFile : private FileFindings, public cases::CollectingSource {
 public:
  CheckedFile(const std::string& name, const std::string& key, Findings& findings)
      : FileFindings(name, key, findings), CollectingSource(name, *this) {
    is_open_ = true;
  }
};

/// The simulator's message as a finding's text: without its opening and its line end.
std::string finding_text(std::string message);

}  // namespace tools::check
