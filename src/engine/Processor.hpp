// What the steps of an engine run on.
#pragma once

#include <optional>
#include <string>

namespace engine {

/// A device: a graphics card, or one that the processor plays; `watched` is emulated too, and finds
/// misuse of scratch, see device::Emulator.
enum class Device { none, card, emulated, watched };

struct Processor {
  /// Of the host: baseline, avx2 or avx512; without one the best of this machine.
  std::optional<std::string> instruction_set = {};
  Device device = Device::none;
  /// Of several users of the graphics cards of a machine, which take one each in turn.
  int number_on_machine = 0;
};

}  // namespace engine
