// The graphics card of this machine, in a program that was built for one: make_card_backend.cu, or
// no_card.cpp in any other.
#pragma once

#include <memory>

#include "engine/device/DeviceSteps.hpp"

namespace engine::device {

/// Throws std::runtime_error where this program was not built for cards, or finds none; the text
/// names what is missing.
void require_card();

/// The card for what a run has on the host, which must outlive it. Throws std::runtime_error as
/// require_card() does, and where the card lacks memory.
std::unique_ptr<DeviceSteps> make_card_backend(Tables& tables, Forcing& forcing,
                                               Activity& activity);

}  // namespace engine::device
