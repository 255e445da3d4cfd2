// The device that tests run on.
#pragma once

#include <cstdlib>
#include <string_view>

#include "engine/Processor.hpp"

namespace support {

/// The emulated one, or the graphics card where QUILLMERE_TEST_DEVICE is "card".
inline engine::Device device_under_test() {
  const char* const wish = std::getenv("QUILLMERE_TEST_DEVICE");
  return wish != nullptr && std::string_view(wish) == "card" ? engine::Device::card
                                                             : engine::Device::emulated;
}

}  // namespace support
