// The calling thread's part of a flattened loop, cut the way a static
// schedule cuts it: contiguous blocks, the first `total % threads` threads
// one iteration longer. Outside a parallel region the caller gets it all,
// so the same stage code serves the single-threaded and the parallel path.
#pragma once

#include "zfft_variant.h"

#include <omp.h>

namespace ZFFT_VARIANT {
namespace {

struct work_share {
    long begin;
    long end;
};

inline work_share my_share(long total)
{
    const long threads = omp_get_num_threads();
    const long id = omp_get_thread_num();
    const long base = total / threads;
    const long extra = total % threads;
    const long begin = id * base + (id < extra ? id : extra);
    return {begin, begin + base + (id < extra ? 1 : 0)};
}

// False when a parallel region would get a team of one thread. The engine
// then runs its shared loops whole on the calling thread instead: the same
// work in the same order, without the fork and the barriers.
inline bool team_would_share()
{
    return omp_get_max_threads() > 1;
}

} // namespace
} // namespace ZFFT_VARIANT
