// The kernels of a step as a card runs them.
#include "engine/device/AdvanceHll1.hpp"
#include "engine/device/AdvanceHll2.hpp"
#include "engine/device/AdvancePatches.hpp"
#include "engine/device/CopyCells.hpp"
#include "engine/device/EndStep.hpp"
#include "engine/device/FindActive.hpp"
#include "engine/device/KeepStates.hpp"
#include "engine/device/NoteMaxima.hpp"
#include "engine/device/OuterFluxes.hpp"
#include "engine/device/card_launch.hpp"

namespace engine::device {

template __global__ void run_on_card(const OuterFluxes<false>, int);
template __global__ void run_on_card(const OuterFluxes<true>, int);
template __global__ void run_on_card(const AdvancePatches<false>, int);
template __global__ void run_on_card(const AdvancePatches<true>, int);
template __global__ void run_on_card(const AdvanceHll1<false>, int);
template __global__ void run_on_card(const AdvanceHll1<true>, int);
template __global__ void run_on_card(const AdvanceHll2, int);
template __global__ void run_on_card(const KeepStates, int);
template __global__ void run_on_card(const BeginStep, int);
template __global__ void run_on_card(const FindActive, int);
template __global__ void run_on_card(const EndStep, int);
template __global__ void run_on_card(const NoteMaxima, int);
template __global__ void run_on_card(const CopyCells<false>, int);
template __global__ void run_on_card(const CopyCells<true>, int);

}  // namespace engine::device
