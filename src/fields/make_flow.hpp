// The choice of what a run steps on.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"
#include "fields/RanksFlow.hpp"
#include "fields/TablesFlow.hpp"

namespace fields {

struct FlowRequest {
  std::string path = {};    ///< "tables", "device", "objects"; empty: the tables, or the objects
                            ///< where the tables have no room for a cell
  std::string device = {};  ///< "card", "emulated", "watched", see engine::Device; empty: a card
  /// Of the tables: baseline, avx2 or avx512; without one the best of this machine.
  std::optional<std::string> instruction_set = {};
  int most_threads = 0;  ///< of the tables; 0: one per core. A small mesh takes fewer.
  /// Whether the steps are to run on a graphics card.
  bool asks_for_card() const { return path == "device" && (device.empty() || device == "card"); }
  RanksRequest ranks = {};  ///< of the tables; the objects run on one rank, and the others wait
  /// Gets the mesh and the fields of a shared case for the objects, which need all of them.
  std::function<void()> fetch_mesh = {};
};

/// The flow of a case, which must outlive it, at its start. On objects there can be one flow in a
/// process at a time: they read globals, which are set here. Throws std::runtime_error where the
/// request cannot be met.
std::unique_ptr<Flow> make_flow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                                const FlowRequest& request = {});

/// The same on the tables. Throws std::length_error where they have no room for a cell.
std::unique_ptr<TablesFlow> make_tables_flow(const cases::Case& contents,
                                             cases::Diagnostics& diagnostics,
                                             const FlowRequest& request);

}  // namespace fields
