// What the steps of an engine run on.
#pragma once

#include <optional>
#include <string>

namespace engine {

/// A device; `watched` is emulated too, and finds misuse of scratch, see device::Emulator.
enum class Device { none, emulated, watched };

struct Processor {
  /// Of the host: baseline, avx2 or avx512; without one the best of this machine.
  std::optional<std::string> instruction_set = {};
  Device device = Device::none;
};

}  // namespace engine
