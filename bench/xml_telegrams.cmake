# Telegram writing and reading: XmlBuilder against a pugixml tree printed by
# xpugi (the peer), and a Property list written and read back.
add_executable(zlr_bench_xml_telegrams ${CMAKE_CURRENT_LIST_DIR}/xml_telegrams_bench.cpp)
target_link_libraries(zlr_bench_xml_telegrams PRIVATE zlr_kit benchmark::benchmark)
