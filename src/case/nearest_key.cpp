#include "case/nearest_key.hpp"

#include "utils/edit_distance.hpp"

namespace cases {

const Key* nearest_key(const std::string& section, const std::string& name) {
  const Key* nearest = nullptr;
  std::size_t smallest = utils::least_strange_distance(name);
  for (const Key& key : keys) {
    const std::size_t distance = utils::edit_distance(name, key.name());
    const bool nearer =
        distance < smallest || (distance == smallest && nearest != nullptr &&
                                nearest->section() != section && key.section() == section);
    if (!nearer) continue;
    smallest = distance;
    nearest = &key;
  }
  return nearest;
}

}  // namespace cases
