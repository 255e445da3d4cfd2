// How often tests try what they draw at random.
#pragma once

namespace support {

/// Of so many trials a build with sanitizers, which slow them down, makes a tenth: an access that
/// it refuses does not hide in so few numbers as a rounding does.
constexpr int trials(int many) {
#ifdef QUILLMERE_SANITIZED
  return (many + 9) / 10;
#else
  return many;
#endif
}

}  // namespace support
