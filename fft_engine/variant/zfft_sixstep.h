// Large power-of-two complex transforms as a square matrix: row transforms
// of about sqrt(N) points that fit the cache, with the matrix turned between
// them. Odd powers first split into eight blocks by one radix-8 step.
#pragma once

#include "zfft_aligned_table.h"
#include "zfft_fft_if.h"

#include <cstdint>

namespace ZFFT_VARIANT {
namespace ZFFT_SixStep {

// One listed 2 by 2 tile of the upper triangle: row i, column j (i <= j).
struct tile_pair {
    std::uint16_t j;
    std::uint16_t i;
};
static_assert(sizeof(tile_pair) == 4, "tile list entries are two 16-bit indices");

class FFT0 final : public FFT_IF {
public:
    FFT0() = default;
    FFT0(const FFT0&) = delete;
    FFT0& operator=(const FFT0&) = delete;

    void setup(int n) override;
    void setup_log2(int log_N) override;

    void forward(complex_t* x, complex_t* y) override;
    void forward_raw(complex_t* x, complex_t* y) override;
    void forward_unitary(complex_t* x, complex_t* y) override;
    void inverse(complex_t* x, complex_t* y) override;
    void inverse_unitary(complex_t* x, complex_t* y) override;
    void inverse_norm(complex_t* x, complex_t* y) override;
    void forward_raw_from(const complex_t* in, complex_t* x, complex_t* y) override;
    const char* name() const override { return ZFFT_VARIANT_NAME "::ZFFT_SixStep::FFT0"; }

private:
    enum class Scaling { none, by_n, by_sqrt_n };
    void run(bool inverse, Scaling scaling, const complex_t* in, complex_t* x, complex_t* y) const;
    void make_tiles(int n);
    void clear_views();

    int N = 0;
    int log_N = -1;
    // Tile twiddles (even log_N), odd-step twiddles (odd log_N), or for
    // log_N up to 5 the row table of the size itself.
    const complex_t* m_first = nullptr;
    // Tile twiddles for odd log_N.
    const complex_t* m_tile_twiddles = nullptr;
    // Long radix-8 table of the row size; null for rows of fewer than 9.
    const complex_t* m_rows = nullptr;
    const tile_pair* m_tiles = nullptr;
    aligned_table m_first_owner;
    aligned_table m_tile_twiddle_owner;
    aligned_table m_row_owner;
    aligned_table m_tile_owner;
};

} // namespace ZFFT_SixStep
} // namespace ZFFT_VARIANT
