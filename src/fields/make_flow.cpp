#include "fields/make_flow.hpp"

#include <string>

#include "fields/CompiledFlow.hpp"
#include "fields/ObjectsFlow.hpp"
#include "utils/stop.hpp"

namespace fields {

std::unique_ptr<Flow> make_flow(PhysicalModel& model) {
  return make_flow(model, engine::threads_for(model.n_cells));
}

std::unique_ptr<Flow> make_flow(PhysicalModel& model, int threads, int cells_per_patch) {
  std::unique_ptr<CompiledModel> compiled = CompiledModel::compile(model, threads, cells_per_patch);
  if (!compiled) return std::make_unique<ObjectsFlow>(model);
  if (compiled->tables().threads() != threads) {
    utils::warn("the system gives " + std::to_string(compiled->tables().threads()) + " of " +
                std::to_string(threads) +
                " threads: the run is slower, its results stay the same.");
  }
  return std::make_unique<CompiledFlow>(std::move(compiled), model);
}

}  // namespace fields
