#include <dlfcn.h>

#include "mesh/gmsh_module.hpp"
#include "support/Error.hpp"
#include "support/beside_program.hpp"

namespace mesh_import {

const GmshModule& load_gmsh() {
  const std::string file = tools::beside_program("lib/quillmere/gmsh.so");
  void* const module = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);  // until the program ends
  const void* const found = module != nullptr ? dlsym(module, "quillmere_gmsh") : nullptr;
  if (found == nullptr) {
    const char* const why = dlerror();
    throw tools::Error("Gmsh cannot be loaded: " +
                       std::string(why != nullptr ? why : "its module is empty") + ".");
  }
  return *static_cast<const GmshModule*>(found);
}

}  // namespace mesh_import
