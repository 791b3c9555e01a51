# The real transform against FFTW's r2c. Built with the product's flags;
# FFTW only here.
add_executable(bench_fft_real ${CMAKE_CURRENT_LIST_DIR}/bench_fft_real.cpp)
target_link_libraries(bench_fft_real PRIVATE fft_engine PkgConfig::FFTW3 ${FFTW3_OMP_LIBRARY}
  benchmark::benchmark OpenMP::OpenMP_CXX)
