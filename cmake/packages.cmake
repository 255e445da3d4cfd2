# Packages of what is installed: Debian packages (cpack -G DEB), one per component, and an archive of all
# of it that runs from any folder (cpack -G TGZ). scripts/package.sh makes and checks both.
set(CPACK_PACKAGE_VENDOR "The Quillmere developers")
set(CPACK_PACKAGE_CONTACT "The Quillmere developers <developers@quillmere.example>"
  CACHE STRING "Maintainer of the packages")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE quillmere)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/stage.cmake)
# For that script.
set(CPACK_QUILLMERE_PACKAGING ${PROJECT_SOURCE_DIR}/packaging/debian)
set(CPACK_QUILLMERE_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# The Debian package of a component: its name, what apt shows of it, in lines of less than 80 letters,
# and the targets that it holds.
set(CPACK_COMPONENTS_ALL)
set(packaged_targets)
macro(quillmere_package component name summary description)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  list(APPEND packaged_targets ${ARGN})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
endmacro()

quillmere_package(simulator quillmere
  "simulator of free-surface flow over terrain"
"Solves the two-dimensional shallow-water equations on unstructured triangle
meshes: dam breaks, river floods, urban inundation, rain on a catchment with
infiltration into the soil, and a sediment bed that the flow erodes and
builds. One scenario is one JSON file."
  quillmere)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS quillmere-tools)

quillmere_package(library libquillmere-dev
  "simulator of free-surface flow over terrain - library"
"Simulations of shallow water as values: a program steps any number of them,
reads and sets their water, rain and boundaries, and couples them. The
static library, its header, and what CMake finds it by."
  quillmere_core)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libdevel)

if(TARGET quillmere-mesh)
  quillmere_package(tools quillmere-tools
    "simulator of free-surface flow over terrain - tools"
"quillmere-mesh makes cases from meshes and terrain, and checks them;
quillmere-export turns results into NetCDF, VTU, GeoTIFF, CSV and pictures."
    quillmere-mesh quillmere-export)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "quillmere, python3-matplotlib")
endif()

if(TARGET quillmere-mpi)
  quillmere_package(mpi quillmere-mpi
    "simulator of free-surface flow over terrain - for clusters"
"The simulator with the cells of a mesh shared among the processes of an MPI
job, and with the same results to the byte."
    quillmere-mpi)
  set(CPACK_DEBIAN_MPI_PACKAGE_RECOMMENDS openmpi-bin)
endif()

if(TARGET _quillmere)
  quillmere_package(python python3-quillmere
    "simulator of free-surface flow over terrain - Python module"
"Simulations of shallow water as values with NumPy arrays: stepped, looked at
and acted upon between steps, also behind the Basic Model Interface."
    _quillmere)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  find_package(Python3 QUIET COMPONENTS Interpreter)  # the one of the module
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_minor}), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/postinst ${PROJECT_SOURCE_DIR}/packaging/debian/prerm)
endif()

add_custom_target(packaged DEPENDS ${packaged_targets})
include(CPack)
