#include "mesh/features.hpp"

#include <algorithm>

#include "mesh/fields.hpp"
#include "support/Error.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

std::optional<std::string> Attributes::text(const std::string& name) {
  known_.push_back(name);
  const auto found = feature_.attributes.find(name);
  if (found == feature_.attributes.end()) return std::nullopt;
  return found->second;
}

std::optional<double> Attributes::number(const std::string& name) {
  const auto given = text(name);
  if (!given) return std::nullopt;
  const auto value = utils::parse_finite_number(*given);
  if (!value) refuse("found the " + name + " \"" + *given + "\", expected a number");
  return value;
}

bool Attributes::flag(const std::string& name) {
  const std::string given = text(name).value_or("no");
  for (const char* word : {"true", "yes", "1"}) {
    if (given == word) return true;
  }
  for (const char* word : {"false", "no", "0"}) {
    if (given == word) return false;
  }
  refuse("found the attribute " + name + " \"" + given + "\", expected true or false");
}

std::vector<std::string> Attributes::others() const {
  std::vector<std::string> names;
  for (const auto& [name, value] : feature_.attributes) {
    if (std::find(known_.begin(), known_.end(), name) == known_.end()) names.push_back(name);
  }
  return names;
}

void Attributes::refuse(const std::string& fault) const {
  throw tools::Error(feature_.place + ": " + fault + ".");
}

void FeatureFile::note(const Attributes& attributes) {
  for (const std::string& name : attributes.others()) {
    if (std::find(others_.begin(), others_.end(), name) == others_.end()) others_.push_back(name);
  }
}

std::string FeatureFile::remark() const {
  if (others_.empty()) return "";
  return path_ + ": attributes without a meaning here: " + list_of_names(others_) + ".";
}

}  // namespace mesh_import
