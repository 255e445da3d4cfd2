#include "ranks/writers.hpp"

#include <algorithm>
#include <numeric>

#include "engine/aligned_vector.hpp"

namespace ranks {

std::vector<int> writers_of(const std::vector<int>& first_on_machine, int count) {
  if (count <= 0) return first_on_machine;
  const std::size_t ranks = first_on_machine.size();
  const std::size_t groups = std::min(static_cast<std::size_t>(count), ranks);
  std::vector<int> by_machine(ranks), writers(ranks);
  std::iota(by_machine.begin(), by_machine.end(), 0);
  std::stable_sort(by_machine.begin(), by_machine.end(), [&](int a, int b) {
    return first_on_machine[engine::at(a)] < first_on_machine[engine::at(b)];
  });
  for (std::size_t k = 0; k < ranks; ++k) {
    const std::size_t group = k * groups / ranks;
    const std::size_t first = (group * ranks + groups - 1) / groups;
    writers[engine::at(by_machine[k])] = by_machine[first];
  }
  return writers;
}

}  // namespace ranks
