# The real transform against FFTW's r2c, and the estimator against its own
# transform. Built with the product's flags; FFTW only here.
add_executable(bench_fft_real
  ${CMAKE_CURRENT_LIST_DIR}/bench_fft_real.cpp
  ${PROJECT_SOURCE_DIR}/software_channels/frequency_measurement/frequency_estimator.cpp)
target_include_directories(bench_fft_real PRIVATE ${PROJECT_SOURCE_DIR}/software_channels/frequency_measurement)
target_link_libraries(bench_fft_real PRIVATE fft_engine PkgConfig::FFTW3 ${FFTW3_OMP_LIBRARY}
  benchmark::benchmark OpenMP::OpenMP_CXX)
