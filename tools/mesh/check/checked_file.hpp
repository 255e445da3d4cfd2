// A text file of a case, read past its errors.
#pragma once

#include <optional>
#include <string>

#include "mesh/check/findings.hpp"
#include "utils/TextScanner.hpp"
#include "utils/stop.hpp"

namespace tools::check {

/// Turns what the simulator's reader refuses into findings, and goes on behind it: for ten refusals
/// or until the file ends.
class CheckedFile {
 public:
  /// `key` is the place in the data file that names the file.
  CheckedFile(const std::string& name, const std::string& key, Findings& findings);

  /// Whether there is more to read.
  bool is_open() const { return scanner_.has_value(); }
  /// Whether nothing has been refused.
  bool is_well() const { return refusals_ == 0; }
  int refusals() const { return refusals_; }

  /// The value that `read` takes from the scanner; `otherwise` if it is refused.
  template <class T, class Read>
  T take(T otherwise, Read read) {
    if (!scanner_) return otherwise;
    try {
      return read(*scanner_);
    } catch (const utils::FatalError& error) {
      refused(error.what());
      return otherwise;
    }
  }
  /// A value without which the rest of the file can't be understood.
  template <class T, class Read>
  T take_or_give_up(T otherwise, Read read) {
    const int before = refusals_;
    const T value = take(otherwise, read);
    if (refusals_ != before) scanner_.reset();
    return value;
  }
  void begin_record(const char* kind, int index, int total) {
    if (scanner_) scanner_->begin_record(kind, index, total);
  }
  double number(const char* field) {
    return take(0.0, [&](utils::TextScanner& file) { return file.read_number(field); });
  }

 private:
  void refused(std::string message);

  Findings& findings_;
  std::optional<utils::TextScanner> scanner_;
  std::string name_;
  int refusals_ = 0;
};

/// The simulator's message as a finding's text: without its opening and its line end.
std::string finding_text(std::string message);

}  // namespace tools::check
