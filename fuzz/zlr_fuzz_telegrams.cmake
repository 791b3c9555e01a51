# Fuzz targets of the readers. Those with a round-trip check write back
# through the simulator's telegram writers, which are compiled in here
# rather than linking the whole simulator.
include(${CMAKE_CURRENT_SOURCE_DIR}/zlr_fuzz_readers.cmake)
file(GLOB ZLR_FUZZ_HOST_TELEGRAM_SOURCES CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/host_sim/telegrams/*.cpp)
add_library(zlr_fuzz_host_telegrams STATIC ${ZLR_FUZZ_HOST_TELEGRAM_SOURCES})
target_include_directories(zlr_fuzz_host_telegrams PUBLIC ${PROJECT_SOURCE_DIR}/host_sim/telegrams)
target_link_libraries(zlr_fuzz_host_telegrams PUBLIC zlr_kit)
target_compile_options(zlr_fuzz_host_telegrams PRIVATE -fsanitize=fuzzer-no-link)

foreach(reader ${ZLR_FUZZ_READERS})
  zlr_add_fuzz_target(zlr_fuzz_${reader} ${CMAKE_CURRENT_SOURCE_DIR}/zlr_fuzz_${reader}.cpp)
  target_link_libraries(zlr_fuzz_${reader} PRIVATE zlr_fuzz_host_telegrams)
endforeach()
