#pragma once

#include <memory>

#include "engine/Backend.hpp"
#include "engine/Processor.hpp"
#include "engine/ThreadTeam.hpp"

namespace engine::device {

/// Cells of a patch, whose scratch lies in the fast memory of a card.
inline constexpr int cells_per_patch = 512;

/// A device on the tables, emulated by the team; both must outlive it. Throws std::runtime_error
/// for a scheme that devices do not run.
std::unique_ptr<Backend> make_device_backend(Device device, Tables& tables, ThreadTeam& team);

}  // namespace engine::device
