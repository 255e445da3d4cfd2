# Compiles the kernels of a step for cards, as `cmake -DNVCC=... -DFLAGS=... -DARCHITECTURES=...
# -DFOLDER=... -P` of this file, and looks at what the compiler says of each: nothing may be spilled to
# memory, and registers must leave room for enough threads on a multiprocessor (65,536 registers).
set(threads_per_multiprocessor_water 768)  # three blocks of a patch
set(threads_per_multiprocessor_bed 512)
set(threads_per_multiprocessor_hll2 512)  # two
set(threads_per_multiprocessor_end 1024)  # its only one
set(kernels_of_a_step 14)

set(code)
foreach(architecture IN LISTS ARCHITECTURES)
  list(APPEND code -gencode arch=compute_${architecture},code=sm_${architecture})
endforeach()
execute_process(
  COMMAND ${NVCC} ${FLAGS} ${code} -Xptxas -v -c -o ${FOLDER}/step_kernels.o
          ${CMAKE_CURRENT_LIST_DIR}/step_kernels.cu
  RESULT_VARIABLE status OUTPUT_VARIABLE said ERROR_VARIABLE said)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "The kernels do not compile:\n${said}")
endif()

# Of every kernel: its name, architecture, spills and registers.
set(line "[^\n]*\n")
string(REGEX MATCHALL
  "Compiling entry function '[^']+' for '[^']+'\n${line}${line}[^\n]*Used [0-9]+ registers"
  kernels "${said}")
list(LENGTH ARCHITECTURES per_kernel)
list(LENGTH kernels count)
math(EXPR expected "${kernels_of_a_step} * ${per_kernel}")
if(NOT count EQUAL expected)
  message(FATAL_ERROR "${count} kernels found, ${expected} expected:\n${said}")
endif()
foreach(kernel IN LISTS kernels)
  string(REGEX MATCH "function '([^']+)' for '([^']+)'" name "${kernel}")
  set(name "${CMAKE_MATCH_1} for ${CMAKE_MATCH_2}")
  string(REGEX MATCH "Used ([0-9]+) registers" registers "${kernel}")
  set(registers ${CMAKE_MATCH_1})
  set(threads ${threads_per_multiprocessor_water})
  if(name MATCHES "ILb1E")  # of water and bed
    set(threads ${threads_per_multiprocessor_bed})
  elseif(name MATCHES "AdvanceHll2")
    set(threads ${threads_per_multiprocessor_hll2})
  elseif(name MATCHES "EndStep")
    set(threads ${threads_per_multiprocessor_end})
  endif()
  math(EXPR most "65536 / ${threads} / 8 * 8")  # they are given out by 8
  message(STATUS "${name}: ${registers} registers of at most ${most}")
  if(NOT kernel MATCHES " 0 bytes stack frame, 0 bytes spill stores, 0 bytes spill loads")
    message(SEND_ERROR "${name} spills:\n${kernel}")
  endif()
  if(registers GREATER most)
    message(SEND_ERROR "${name} takes ${registers} registers, at most ${most} are expected")
  endif()
endforeach()
