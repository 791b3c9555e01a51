# zelvar-sim run over one-minute and one-hour recordings against the same
# pipeline in numpy; both run as child processes of the benchmark.
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
add_executable(bench_throughput ${CMAKE_CURRENT_LIST_DIR}/bench_throughput.cpp)
target_link_libraries(bench_throughput PRIVATE PkgConfig::SNDFILE benchmark::benchmark)
add_dependencies(bench_throughput zelvar-sim)
target_compile_definitions(bench_throughput PRIVATE
  ZELVAR_SIM="$<TARGET_FILE:zelvar-sim>"
  NUMPY_FREQUENCY="${CMAKE_CURRENT_LIST_DIR}/numpy_frequency.py"
  BENCH_DATA_DIR="${CMAKE_BINARY_DIR}/bench_data")
