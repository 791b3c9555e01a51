#include "frequency_strongest_bin.h"

#include "zfft/zfft_strongest_bin.h"

// The engine holds the search once per processor variant and runs the one
// that its transforms run.
std::uint64_t strongestBin(const ZFFT::complex_t* X, std::uint64_t limit)
{
    return ZFFT::strongest_bin(X, limit);
}
