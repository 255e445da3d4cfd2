#include "fields/make_flow.hpp"

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "fields/ObjectsFlow.hpp"
#include "fields/TablesFlow.hpp"

namespace fields {

namespace {

std::unique_ptr<Flow> make_tables_flow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                                       int threads) {
  auto flow = std::make_unique<TablesFlow>(contents, diagnostics, threads);
  const int got = flow->execution_path().threads;
  if (got != threads) {
    diagnostics.warn("the system gives " + std::to_string(got) + " of " + std::to_string(threads) +
                     " threads: the run is slower, its results stay the same.");
  }
  return flow;
}

}  // namespace

std::unique_ptr<Flow> make_flow(const cases::Case& contents, cases::Diagnostics& diagnostics,
                                Path path, int threads) {
  if (path == Path::objects) return std::make_unique<ObjectsFlow>(contents);
  try {
    const int wanted = threads > 0 ? threads : engine::threads_for(contents.mesh.n_cells());
    return make_tables_flow(contents, diagnostics, wanted);
  } catch (const std::length_error&) {  // more edges of a cell than the tables can number
    if (path == Path::best) return std::make_unique<ObjectsFlow>(contents);
    throw std::runtime_error(
        "Error. QUILLMERE_ENGINE asks for tables, but the model holds what they do not know.");
  }
}

Path path_of_environment() {
  const char* const text = std::getenv("QUILLMERE_ENGINE");
  const std::string path = text == nullptr ? "" : text;
  if (path.empty()) return Path::best;
  if (path == "tables") return Path::tables;
  if (path == "objects") return Path::objects;
  throw std::runtime_error("Error. QUILLMERE_ENGINE is \"" + path +
                           "\", expected objects or tables.");
}

}  // namespace fields
