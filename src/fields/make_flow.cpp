#include "fields/make_flow.hpp"

#include <stdexcept>
#include <string>

#include "engine/device/card.hpp"
#include "fields/HllFlow.hpp"
#include "fields/ObjectsFlow.hpp"
#include "fields/missing_threads.hpp"
#include "utils/number_text.hpp"

namespace fields {

namespace {

/// The reference of a scheme.
std::unique_ptr<Flow> make_walk(const cases::Case& contents) {
  if (cases::is_hll(contents.scheme)) return std::make_unique<HllFlow>(contents);
  return std::make_unique<ObjectsFlow>(contents);
}

bool has_several_ranks(const cases::Case& contents, const FlowRequest& request) {
  const ranks::Group* const group = request.ranks.group;
  const bool is_shared = request.ranks.shared != nullptr;
  return group != nullptr && group->size() > 1 && (is_shared || contents.mesh.n_cells() > 1);
}

engine::Processor processor_for(const FlowRequest& request) {
  using engine::Device;
  if (request.path != "device") return {request.instruction_set, Device::none};
  if (request.device == "emulated") return {{}, Device::emulated};
  if (request.device == "watched") return {{}, Device::watched};
  if (!request.asks_for_card()) {
    throw std::runtime_error("Error. The device is " + utils::quoted_start(request.device) +
                             ", expected card, emulated or watched.");
  }
  engine::device::require_card();
  return {{}, Device::card};
}

}  // namespace

std::unique_ptr<TablesFlow> make_tables_flow(const cases::Case& contents,
                                             cases::Diagnostics& diagnostics,
                                             const FlowRequest& request) {
  const int wanted = engine::threads_for(contents.mesh.n_cells(), request.most_threads);
  auto flow =
      std::make_unique<TablesFlow>(contents, diagnostics, wanted, 0, processor_for(request));
  warn_of_missing_threads(flow->execution_path().threads, wanted, diagnostics);
  return flow;
}

std::unique_ptr<Flow> make_flow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                                const FlowRequest& request) {
  const std::string& path = request.path;
  if (!path.empty() && path != "tables" && path != "device" && path != "objects") {
    throw std::runtime_error("Error. QUILLMERE_ENGINE is \"" + path +
                             "\", expected objects, tables or device.");
  }
  if (path == "objects") return make_walk(contents);
  try {
    if (has_several_ranks(contents, request)) {
      return std::make_unique<RanksFlow>(contents, diagnostics, request.ranks, request.most_threads,
                                         processor_for(request));
    }
    return make_tables_flow(contents, diagnostics, request);
  } catch (const std::length_error&) {  // more edges of a cell than the tables can number
    if (path.empty()) {
      if (request.fetch_mesh) request.fetch_mesh();
      return make_walk(contents);
    }
    throw std::runtime_error("Error. QUILLMERE_ENGINE asks for " +
                             std::string(path == "device" ? "a device" : "tables") +
                             ", but the model holds what they do not know.");
  }
}

}  // namespace fields
