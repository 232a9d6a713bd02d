# The kernels that are compiled once per kind of processor: what each kind may use.
set(arrlib_kernel_folder ${PROJECT_SOURCE_DIR}/ops/kernels)
set(arrlib_kernel_kinds baseline)

# Formulas are inlined whole, and checks of integer arithmetic in each of them take minutes to compile.
if(ARRLIB_SANITIZE MATCHES undefined)
  set(arrlib_kernel_checks -O1 -fno-sanitize=undefined)
endif()
set_source_files_properties(${arrlib_kernel_folder}/kernels_baseline.cpp PROPERTIES COMPILE_OPTIONS "${arrlib_kernel_checks}")

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i[3-6]86)$")
  list(APPEND arrlib_kernel_kinds avx2 avx512)
  # A loop of four instructions that lies across two cache lines takes half as long again.
  set(arrlib_flags_avx2 -mavx2 -mfma -falign-loops=64)
  set(arrlib_flags_avx512 -mavx2 -mfma -mavx512f -mavx512dq -mavx512vl -mavx512bw -falign-loops=64)
  set_source_files_properties(${arrlib_kernel_folder}/kernel_set.cpp PROPERTIES COMPILE_DEFINITIONS ARRLIB_X86_KERNELS)
  foreach(kind avx2 avx512)
    set_source_files_properties(${arrlib_kernel_folder}/kernels_${kind}.cpp PROPERTIES
      COMPILE_DEFINITIONS ARRLIB_X86_KERNELS COMPILE_OPTIONS "${arrlib_flags_${kind}};${arrlib_kernel_checks}")
  endforeach()
endif()

# Nothing but its table may leave such a file: code that it shares with others could be linked with
# instructions that the processor lacks.
if(ARRLIB_TESTS AND NOT CMAKE_CROSSCOMPILING)
  add_test(NAME kernel_symbols COMMAND ${CMAKE_COMMAND} -DNM=${CMAKE_NM}
    "-DOBJECTS=$<FILTER:$<TARGET_OBJECTS:arrlib_inside>,INCLUDE,_(avx2|avx512)\\.cpp>" -P ${PROJECT_SOURCE_DIR}/tests/ops/kernel_symbols.cmake)
endif()
