// Of a program that was not built for graphics cards.
#include <stdexcept>

#include "engine/device/card.hpp"

namespace engine::device {

void require_card() {
  throw std::runtime_error(
      "Error. A graphics card is asked for, but this program was built without support for cards "
      "(-DQUILLMERE_CUDA=ON); the device \"emulated\" runs what a card would run on the "
      "processor.");
}

std::unique_ptr<DeviceSteps> make_card_backend(int, Tables&, Forcing&, Activity&, const Exchange&) {
  require_card();
  return nullptr;
}

}  // namespace engine::device
