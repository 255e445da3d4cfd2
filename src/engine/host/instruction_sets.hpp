// Which instruction sets beyond the baseline this machine runs.
#pragma once

namespace engine {

#ifdef QUILLMERE_X86_LOOPS
inline bool has_avx2() {
  return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
}

inline bool has_avx512() {
  return has_avx2() && __builtin_cpu_supports("avx512f") != 0 &&
         __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
}
#endif

}  // namespace engine
