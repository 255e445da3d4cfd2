#include "mesh/check/findings.hpp"

#include <algorithm>

namespace tools::check {

namespace {
constexpr long shown_of_a_kind = 10;
}

void Findings::error(const std::string& kind, const std::string& text) {
  add(Severity::error, kind, text);
}

void Findings::warning(const std::string& kind, const std::string& text) {
  add(Severity::warning, kind, text);
}

void Findings::add_remark(const std::string& kind, const std::optional<std::string>& text) {
  if (text) add(Severity::warning, kind, *text);
}

void Findings::add_remarks(const std::string& kind, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) add(Severity::warning, kind, text);
}

void Findings::add(Severity severity, const std::string& kind, const std::string& text) {
  auto found = std::find_if(kinds_.begin(), kinds_.end(), [&](const Kind& known) {
    return known.severity == severity && known.name == kind;
  });
  if (found == kinds_.end()) found = kinds_.insert(kinds_.end(), Kind{severity, kind, {}});
  if (++found->count <= shown_of_a_kind) found->texts.push_back(text);
}

std::vector<Finding> Findings::in_order() const {
  std::vector<Finding> ordered;
  for (const Severity severity : {Severity::error, Severity::warning}) {
    for (const Kind& kind : kinds_) {
      if (kind.severity != severity) continue;
      for (const std::string& text : kind.texts) ordered.push_back({severity, kind.name, text});
      const long hidden = kind.count - shown_of_a_kind;
      if (hidden > 0) {
        ordered.push_back({severity, kind.name, std::to_string(hidden) + " more of this kind"});
      }
    }
  }
  return ordered;
}

long Findings::count(Severity severity) const {
  long sum = 0;
  for (const Kind& kind : kinds_) {
    if (kind.severity == severity) sum += kind.count;
  }
  return sum;
}

}  // namespace tools::check
