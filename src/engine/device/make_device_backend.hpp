#pragma once

#include <memory>

#include "engine/Processor.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/device/DeviceSteps.hpp"

namespace engine::device {

/// Cells of a patch, whose scratch lies in the fast memory of a card: that of the HLL schemes holds
/// the states around the patch as well.
constexpr int cells_per_patch(cases::Scheme scheme) { return cases::is_hll(scheme) ? 256 : 512; }

/// The device of a processor for what a run has on the host, which must outlive it, as the team
/// that emulates one. Throws std::runtime_error where there is no such device, or it has too little
/// memory.
std::unique_ptr<DeviceSteps> make_device_backend(const Processor& processor, Tables& tables,
                                                 Forcing& forcing, Activity& activity,
                                                 const Exchange& exchange, ThreadTeam& team);

}  // namespace engine::device
