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
  const bool has_avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  if (has_avx2) loops.push_back(avx2());
  if (has_avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512vl")) {
    loops.push_back(avx512());
  }
#endif
  return loops;
}

}  // namespace formula_loops
