# Adds to the staged files of every Debian package what Debian asks for: compressed manual pages, a
# copyright file and a changelog. CPack runs it between installing and packing.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

function(compress file)
  execute_process(COMMAND gzip -9 -n -f ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The licences of the header libraries that programs hold code of, as the system has them.
set(licences "")
foreach(package nlohmann-json3-dev libcli11-dev pybind11-dev)
  set(file /usr/share/doc/${package}/copyright)
  if(EXISTS ${file})
    file(READ ${file} text)
    string(APPEND licences "\n---- ${package} ----\n\n${text}")
  endif()
endforeach()
file(READ ${CPACK_QUILLMERE_PACKAGING}/copyright copyright)

foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} upper)
  set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share)
  set(documents ${share}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(GLOB pages ${share}/man/man1/*.1)
  foreach(page ${pages})
    compress(${page})
  endforeach()
  file(MAKE_DIRECTORY ${documents})
  file(WRITE ${documents}/copyright "${copyright}${licences}")
  configure_file(${CPACK_QUILLMERE_PACKAGING}/changelog.in ${documents}/changelog.Debian @ONLY)
  compress(${documents}/changelog.Debian)
endforeach()
