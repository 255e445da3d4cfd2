# Loops are built once per instruction set, and the program chooses when it runs.
set(QUILLMERE_INSTRUCTION_SETS baseline)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  list(APPEND QUILLMERE_INSTRUCTION_SETS avx2 avx512)
endif()
set(QUILLMERE_LOOPS_LEVEL -O3)
if(QUILLMERE_COVERAGE)
  set(QUILLMERE_LOOPS_LEVEL -O0)  # lines are counted as they are written
elseif(QUILLMERE_SANITIZE)
  set(QUILLMERE_LOOPS_LEVEL -O1)  # they compile in half the time
endif()
set(QUILLMERE_OPTIONS_baseline)
set(QUILLMERE_OPTIONS_avx2 -mavx2 -mfma)
set(QUILLMERE_OPTIONS_avx512
  -mavx512f -mavx512dq -mavx512vl -mavx2 -mfma -mprefer-vector-width=512 -mtune=icelake-server)

# Adds a source file of loops to a target, once per set, with QUILLMERE_ISA_NAME defined as the name
# of the set. The target's other sources see QUILLMERE_X86_LOOPS where there is more than a baseline.
function(quillmere_add_loops target source)
  foreach(isa IN LISTS QUILLMERE_INSTRUCTION_SETS)
    set(loops ${target}_${isa})
    add_library(${loops} OBJECT ${source})
    target_include_directories(${loops} PRIVATE
      $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
    target_compile_definitions(${loops} PRIVATE QUILLMERE_ISA_NAME=${isa})
    # None of these options changes a result: errors of the mathematics library go unreported,
    # floating-point traps are off, as they always are here, and values are not carried from one
    # turn of a loop to the next, which would keep it from being vectorised.
    target_compile_options(${loops} PRIVATE
      ${QUILLMERE_LOOPS_LEVEL} -fopenmp-simd -fno-math-errno -fno-trapping-math
      $<$<CXX_COMPILER_ID:GNU>:-fno-tree-pre> ${QUILLMERE_OPTIONS_${isa}})
    target_link_libraries(${loops} PRIVATE quillmere_options)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${loops}>)
  endforeach()
  if("avx2" IN_LIST QUILLMERE_INSTRUCTION_SETS)
    target_compile_definitions(${target} PRIVATE QUILLMERE_X86_LOOPS)
  endif()
endfunction()
