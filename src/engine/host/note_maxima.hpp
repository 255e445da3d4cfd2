// Notes the present states of patches in what is kept of their largest flow, on the host.
#pragma once

#include "engine/Tables.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/host/loops.hpp"

namespace engine {

/// Hints of a patch, by its number; null where the tables keep no maxima.
inline kernels::MaximaHint* hints_of_patch(int patch, Tables& tables) {
  if (!tables.maxima) return nullptr;
  return &tables.maxima
              ->hints[at(tables.patches.patches[at(patch)].cells.begin / cells_of_shortest)];
}

/// Of a patch, by its number; nothing where the tables keep no maxima.
inline void note_maxima_of_patch(int patch, Tables& tables, const Loops& loops) {
  if (!tables.maxima) return;
  MaximaTable& maxima = *tables.maxima;
  const Range cells = tables.patches.patches[at(patch)].cells;
  loops.note_maxima(tables.columns(), maxima.columns(), cells.begin, cells.end,
                    {maxima.t, tables.zero_depth, maxima.arrival_depth}, maxima.hints.data());
}

inline void note_maxima_of_patches(const std::vector<int>& patches, Tables& tables,
                                   ThreadTeam& team, const Loops& loops) {
  if (patches.empty()) return;  // no thread need wake up for nothing
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), patches.size());
    for (int k = share.begin; k < share.end; ++k) {
      note_maxima_of_patch(patches[at(k)], tables, loops);
    }
  });
}

}  // namespace engine
