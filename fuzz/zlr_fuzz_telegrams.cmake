# Fuzz targets of the telegram readers. Those with a round-trip check write
# back through the simulator's telegram writers, which are compiled in here
# rather than linking the whole simulator.
file(GLOB ZLR_FUZZ_HOST_TELEGRAM_SOURCES CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/host_sim/telegrams/*.cpp)
add_library(zlr_fuzz_host_telegrams STATIC ${ZLR_FUZZ_HOST_TELEGRAM_SOURCES})
target_include_directories(zlr_fuzz_host_telegrams PUBLIC ${PROJECT_SOURCE_DIR}/host_sim/telegrams)
target_link_libraries(zlr_fuzz_host_telegrams PUBLIC zlr_kit)
target_compile_options(zlr_fuzz_host_telegrams PRIVATE -fsanitize=fuzzer-no-link)

foreach(reader
    update_config
    update_plugin_channels
    channels
    channel_id_map
    create_software_channel
    query_software_channel_action
    process_window
    stream_descriptors
    data_block_list
    data_block
    data_regions
    channel_config_changed
    data_format
    timestamp)
  zlr_add_fuzz_target(zlr_fuzz_${reader} ${CMAKE_CURRENT_SOURCE_DIR}/zlr_fuzz_${reader}.cpp)
  target_link_libraries(zlr_fuzz_${reader} PRIVATE zlr_fuzz_host_telegrams)
endforeach()
