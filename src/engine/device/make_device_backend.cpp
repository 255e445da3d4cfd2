#include "engine/device/make_device_backend.hpp"

#include <stdexcept>

#include "engine/device/DeviceBackend.hpp"
#include "engine/device/Emulator.hpp"

namespace engine::device {

std::unique_ptr<Backend> make_device_backend(Device device, Tables& tables, ThreadTeam& team) {
  if (tables.hll) {
    throw std::runtime_error(
        "Error. The case asks for a scheme that runs on processors alone; on a device there is "
        "LHLLC.");
  }
  const Emulator::Mode mode =
      device == Device::watched ? Emulator::Mode::watching : Emulator::Mode::plain;
  return std::make_unique<DeviceBackend<Emulator>>(tables, Emulator(team, mode));
}

}  // namespace engine::device
