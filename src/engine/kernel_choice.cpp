#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "engine/instruction_sets.hpp"
#include "engine/views.hpp"

namespace engine {

extern const Kernels kernels_baseline;
#ifdef QUILLMERE_X86_LOOPS
extern const Kernels kernels_avx2;
extern const Kernels kernels_avx512;
#endif

namespace {

struct Choice {
  const Kernels* kernels;
  bool is_supported;
};

#ifdef QUILLMERE_X86_LOOPS
/// Best first.
const Choice choices[] = {
    {&kernels_avx512, has_avx512()}, {&kernels_avx2, has_avx2()}, {&kernels_baseline, true}};
#else
const Choice choices[] = {{&kernels_baseline, true}};
#endif

}  // namespace

const Kernels& kernels_of_this_machine() {
  const char* const wanted = std::getenv("QUILLMERE_ISA");
  for (const Choice& choice : choices) {
    if (!choice.is_supported) continue;
    if (wanted == nullptr || std::strcmp(wanted, choice.kernels->name) == 0) {
      return *choice.kernels;
    }
  }
  throw std::runtime_error("Error. QUILLMERE_ISA is \"" + std::string(wanted) +
                           "\", which this machine does not run; expected baseline, avx2 or "
                           "avx512.");
}

}  // namespace engine
