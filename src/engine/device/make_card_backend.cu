// Of a program that was built for graphics cards. It starts without any: the driver is looked for
// when a card is asked for.
#include "engine/device/Card.hpp"
#include "engine/device/DeviceBackend.hpp"
#include "engine/device/card.hpp"

namespace engine::device {

void require_card() {
  int cards = 0;
  const cudaError_t status = cudaGetDeviceCount(&cards);
  if (status == cudaSuccess && cards > 0) return;
  const std::string why = status == cudaSuccess ? "there is none" : cudaGetErrorString(status);
  throw std::runtime_error("Error. A graphics card is asked for, but none can be used: " + why +
                           ".");
}

std::unique_ptr<DeviceSteps> make_card_backend(int number, Tables& tables, Forcing& forcing,
                                               Activity& activity, const Exchange& exchange) {
  require_card();
  return std::make_unique<DeviceBackend<Card>>(tables, forcing, activity, exchange, Card(number));
}

}  // namespace engine::device
