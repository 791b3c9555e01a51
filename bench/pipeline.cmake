# The whole pipeline through the simulated host against the estimator alone.
add_executable(bench_pipeline ${CMAKE_CURRENT_LIST_DIR}/bench_pipeline.cpp)
target_link_libraries(bench_pipeline PRIVATE zelvar_host frequency_measurement_logic
  benchmark::benchmark)
add_dependencies(bench_pipeline frequency_measurement)
target_compile_definitions(bench_pipeline PRIVATE
  FREQUENCY_MEASUREMENT_PLUGIN="$<TARGET_FILE:frequency_measurement>")
