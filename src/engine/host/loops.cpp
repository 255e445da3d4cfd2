// The loops of a step, built once per instruction set: QUILLMERE_ISA_NAME names the table of
// functions that this build provides. The formulas are those of physics/, with the same bits.
#include "engine/host/loops.hpp"

#include "engine/host/cell_loops.hpp"
#include "engine/host/edge_loops.hpp"
#include "engine/host/hll_bed_loops.hpp"
#include "engine/host/hll_loops.hpp"
#include "engine/host/maxima_loops.hpp"
#include "engine/host/soil_loops.hpp"

namespace engine {

#define QUILLMERE_NAME_TEXT_(name) #name
#define QUILLMERE_NAME_TEXT(name) QUILLMERE_NAME_TEXT_(name)
#define QUILLMERE_JOIN_(a, b) a##b
#define QUILLMERE_JOIN(a, b) QUILLMERE_JOIN_(a, b)

using kernels::Local;

extern const Loops QUILLMERE_JOIN(loops_, QUILLMERE_ISA_NAME);
const Loops QUILLMERE_JOIN(loops_, QUILLMERE_ISA_NAME) = {
    .instruction_set = QUILLMERE_NAME_TEXT(QUILLMERE_ISA_NAME),
    .terms = store_terms,
    .green_ampt = demand<physics::GreenAmptSoil>,
    .horton = demand<physics::HortonSoil>,
    .note_maxima = note_maxima,
    .water = {fluxes<FluxesOfWater, Local>, fluxes<FluxesOfWater, int>, advance<AdvanceWater>},
    .water_and_bed = {fluxes<FluxesOfWaterAndBed, Local>, fluxes<FluxesOfWaterAndBed, int>,
                      advance<AdvanceWaterAndBed>},
    .hll = {hll_states_of_patch, hll_fluxes<kernels::HllCellStates>, hll_waters_of_patch, hll_edges,
            hll_fluxes<kernels::HllEdgeColumns>, advance_hll_patch, hll_beds_of_patch,
            hll_bed_fluxes, advance_hll_bed_of_patch}};

}  // namespace engine
