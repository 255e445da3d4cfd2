// The graphics cards of this machine, in a program that was built for one: make_card_backend.cu, or
// no_card.cpp in any other.
#pragma once

#include <memory>

#include "engine/device/DeviceSteps.hpp"

namespace engine::device {

/// Throws std::runtime_error where this program was not built for cards, or finds none; the text
/// names what is missing.
void require_card();

/// A card for what a run has on the host, which must outlive it: of several the one with this
/// number, counted over and over from 0. Throws std::runtime_error as require_card() does, and
/// where the card lacks memory.
std::unique_ptr<DeviceSteps> make_card_backend(int number, Tables& tables, Forcing& forcing,
                                               Activity& activity, const Exchange& exchange);

}  // namespace engine::device
