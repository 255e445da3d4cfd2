#include <stdexcept>
#include <string>

#include "engine/host/instruction_sets.hpp"
#include "engine/host/loops.hpp"

namespace engine {

extern const Loops loops_baseline;
#ifdef QUILLMERE_X86_LOOPS
extern const Loops loops_avx2;
extern const Loops loops_avx512;
#endif

namespace {

struct Choice {
  const Loops* loops;
  bool is_supported;
};

#ifdef QUILLMERE_X86_LOOPS
/// Best first.
const Choice choices[] = {
    {&loops_avx512, has_avx512()}, {&loops_avx2, has_avx2()}, {&loops_baseline, true}};
#else
const Choice choices[] = {{&loops_baseline, true}};
#endif

}  // namespace

const Loops& loops_for(const std::optional<std::string>& instruction_set) {
  for (const Choice& choice : choices) {
    if (!choice.is_supported) continue;
    if (!instruction_set || *instruction_set == choice.loops->instruction_set) {
      return *choice.loops;
    }
  }
  throw std::runtime_error("Error. QUILLMERE_ISA is \"" + *instruction_set +
                           "\", which this machine does not run; expected baseline, avx2 or "
                           "avx512.");
}

}  // namespace engine
