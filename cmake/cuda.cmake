# The CUDA compiler, where there is one, as commands and not as a language of CMake: the flags of the
# project's other targets are not for it.
set(QUILLMERE_CUDA_FLAGS
  -std=c++20 -O2 -ccbin ${CMAKE_CXX_COMPILER}
  -fmad=false  # as -ffp-contract=off on the host
  -Werror=all-warnings -Xcompiler=-ffp-contract=off,-Wall,-Wextra -I${PROJECT_SOURCE_DIR}/src)

find_program(QUILLMERE_NVCC nvcc PATHS ENV CUDA_PATH /usr/local/cuda PATH_SUFFIXES bin)

# Sets a variable to what keeps the compiler from being used, empty if nothing does: it may be too old
# for C++20, refuse the host's compiler, or lack its runtime library (QUILLMERE_CUDART), which is looked
# for where the compiler itself does.
function(quillmere_try_nvcc refusal_name)
  set(refusal "no nvcc found")
  if(QUILLMERE_NVCC)
    set(trial ${CMAKE_BINARY_DIR}/nvcc_trial)
    file(CONFIGURE OUTPUT ${trial}.cu
         CONTENT "#include <bit>\n__global__ void nothing() {}\nint main() {}\n")
    set(command ${QUILLMERE_NVCC} ${QUILLMERE_CUDA_FLAGS} -o ${trial} ${trial}.cu)
    execute_process(
      COMMAND ${command} RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
    set(refusal "${QUILLMERE_NVCC} fails (${status}) ${said}")
    if(status EQUAL 0)
      set(refusal "")
      execute_process(COMMAND ${command} --dryrun OUTPUT_QUIET ERROR_VARIABLE steps)
      string(REGEX MATCHALL "\"-L[^\"]+" folders "${steps}")
      list(TRANSFORM folders REPLACE "^\"-L" "")
      string(REPLACE ":" ";" more "$ENV{LIBRARY_PATH}")
      find_library(QUILLMERE_CUDART cudart_static HINTS ${folders} ${more})
      if(NOT QUILLMERE_CUDART)
        set(refusal "no libcudart_static in ${folders} ${more}")
      endif()
    endif()
  endif()
  set(${refusal_name} "${refusal}" PARENT_SCOPE)
endfunction()

# Sets a variable to those of some architectures that the compiler knows, and says which it does not.
function(quillmere_known_architectures known_name)
  execute_process(
    COMMAND ${QUILLMERE_NVCC} --list-gpu-code OUTPUT_VARIABLE codes ERROR_VARIABLE codes)
  set(known)
  foreach(architecture IN LISTS ARGN)
    if(codes MATCHES "sm_${architecture}\n")
      list(APPEND known ${architecture})
    else()
      message(STATUS "Left out: ${QUILLMERE_NVCC} knows no sm_${architecture}")
    endif()
  endforeach()
  set(${known_name} "${known}" PARENT_SCOPE)
endfunction()

# Adds the graphics card to a target, for cards of some architectures, of which the compiler must know
# one. The CUDA runtime comes into the program, which starts on machines without a driver too.
function(quillmere_add_card target)
  set(source ${PROJECT_SOURCE_DIR}/src/engine/device/make_card_backend.cu)
  set(object ${CMAKE_CURRENT_BINARY_DIR}/${target}_card.o)
  quillmere_known_architectures(architectures ${ARGN})
  if(NOT architectures)
    message(FATAL_ERROR "${QUILLMERE_NVCC} knows none of the architectures ${ARGN}")
  endif()
  foreach(architecture IN LISTS architectures)
    list(APPEND code -gencode arch=compute_${architecture},code=sm_${architecture})
  endforeach()
  list(GET architectures -1 newest)
  list(APPEND code -gencode arch=compute_${newest},code=compute_${newest})  # for cards to come
  add_custom_command(
    OUTPUT ${object}
    COMMAND ${QUILLMERE_NVCC} ${QUILLMERE_CUDA_FLAGS} -Xcompiler=-fPIC,-fvisibility=hidden ${code}
      -MD -MF ${object}.d -c -o ${object} ${source}
    DEPENDS ${source}
    DEPFILE ${object}.d
    COMMENT "Building the kernels of a step for graphics cards"
    VERBATIM)
  set_source_files_properties(${object} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
  target_sources(${target} PRIVATE ${object})
  # Found by quillmere_try_nvcc here, and by quillmereConfig.cmake where the library is installed.
  target_link_libraries(${target} PRIVATE
    $<BUILD_INTERFACE:${QUILLMERE_CUDART}> $<INSTALL_INTERFACE:CUDA::cudart_static>
    ${CMAKE_DL_LIBS} rt)
endfunction()
