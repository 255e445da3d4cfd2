#include "engine/device/make_device_backend.hpp"

#include "engine/device/DeviceBackend.hpp"
#include "engine/device/Emulator.hpp"
#include "engine/device/card.hpp"

namespace engine::device {

std::unique_ptr<DeviceSteps> make_device_backend(const Processor& processor, Tables& tables,
                                                 Forcing& forcing, Activity& activity,
                                                 const Exchange& exchange, ThreadTeam& team) {
  if (processor.device == Device::card) {
    return make_card_backend(processor.number_on_machine, tables, forcing, activity, exchange);
  }
  const Emulator::Mode mode =
      processor.device == Device::watched ? Emulator::Mode::watching : Emulator::Mode::plain;
  return std::make_unique<DeviceBackend<Emulator>>(tables, forcing, activity, exchange,
                                                   Emulator(team, mode));
}

}  // namespace engine::device
