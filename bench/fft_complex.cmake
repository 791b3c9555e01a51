# Complex transforms of the Stockham classes against FFTW, one and two threads.
add_executable(bench_fft_complex ${CMAKE_CURRENT_LIST_DIR}/bench_fft_complex.cpp)
target_link_libraries(bench_fft_complex PRIVATE
  fft_engine benchmark::benchmark ${FFTW3_OMP_LIBRARY} PkgConfig::FFTW3 OpenMP::OpenMP_CXX)
