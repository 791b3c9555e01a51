# The estimator per window against its transform alone.
add_executable(bench_estimator ${CMAKE_CURRENT_LIST_DIR}/bench_estimator.cpp)
target_link_libraries(bench_estimator PRIVATE frequency_measurement_logic benchmark::benchmark)
