#include "engine/host/instruction_sets.hpp"
#include "support/formula_loops/formula_loops.hpp"

namespace formula_loops {

Loops baseline();
#ifdef QUILLMERE_X86_LOOPS
Loops avx2();
Loops avx512();
#endif

std::vector<Loops> of_this_machine() {
  std::vector<Loops> loops = {baseline()};
#ifdef QUILLMERE_X86_LOOPS
  if (engine::has_avx2()) loops.push_back(avx2());
  if (engine::has_avx512()) loops.push_back(avx512());
#endif
  return loops;
}

}  // namespace formula_loops
