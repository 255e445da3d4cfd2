// What a check of a case has found, so far.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tools::check {

/// An error is what the simulator refuses; after a warning it runs, and the result may be wrong.
enum class Severity { error, warning };

// Kinds that a report has a hint for.
inline constexpr char unknown_key[] = "unknown key";
inline constexpr char wrong_type[] = "wrong type";

struct Finding {
  Severity severity;
  std::string kind;  ///< a few words that name the diagnosis, the same for all of a kind
  std::string text;  ///< what was found where, and what is expected
};

/// A file may hold thousands of errors of one kind: the first ten are kept, the rest counted.
class Findings {
 public:
  void error(const std::string& kind, const std::string& text);
  void warning(const std::string& kind, const std::string& text);
  /// Warnings in the words of a rule of the simulator, if the rule remarks on anything.
  void add_remark(const std::string& kind, const std::optional<std::string>& text);
  void add_remarks(const std::string& kind, const std::vector<std::string>& texts);

  /// Errors first, then warnings, each in the order of their kind's first finding.
  std::vector<Finding> in_order() const;
  long count(Severity severity) const;
  bool has_errors() const { return count(Severity::error) > 0; }

 private:
  struct Kind {
    Severity severity;
    std::string name;
    std::vector<std::string> texts;
    long count = 0;
  };
  void add(Severity severity, const std::string& kind, const std::string& text);

  std::vector<Kind> kinds_;
};

}  // namespace tools::check
