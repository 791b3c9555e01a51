# The memory traffic of the engine's stage passes alone, one thread and two.
add_executable(bench_stage_traffic ${CMAKE_CURRENT_LIST_DIR}/bench_stage_traffic.cpp)
target_link_libraries(bench_stage_traffic PRIVATE benchmark::benchmark OpenMP::OpenMP_CXX)
