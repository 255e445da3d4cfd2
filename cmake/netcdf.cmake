# The C library of NetCDF as the target netcdf::netcdf, where it is found (Debian: libnetcdf-dev).
find_path(NETCDF_INCLUDE_DIR netcdf.h)
find_library(NETCDF_LIBRARY netcdf)
if(NETCDF_INCLUDE_DIR AND NETCDF_LIBRARY AND NOT TARGET netcdf::netcdf)
  add_library(netcdf::netcdf UNKNOWN IMPORTED GLOBAL)
  set_target_properties(netcdf::netcdf PROPERTIES
    IMPORTED_LOCATION ${NETCDF_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${NETCDF_INCLUDE_DIR})
endif()
