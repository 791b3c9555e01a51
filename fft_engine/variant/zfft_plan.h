// The plan: which complex class each size gets, and the sizes from which
// each class runs parallel or fills its tables in parallel. The same in all
// three variants; the one place these numbers are written.
#pragma once

#include "zfft/zfft_variants.h"
#include "zfft_variant.h"

namespace ZFFT_VARIANT {

// The class made for each power-of-two complex size, by its log2. The
// alternation of classes is the result of measuring each size, not a rule:
// it is kept as it is. Row 0 (one point) makes nothing; a size that is no
// power of two, or above 2^PLAN_LAST_LOG, gets the mixed-radix class.
constexpr int PLAN_LAST_LOG = 24;
constexpr ZFFT::Algorithm PLAN[PLAN_LAST_LOG + 1] = {
    ZFFT::Algorithm::Planned, // 1: no object
    ZFFT::Algorithm::DIT4,    // 2
    ZFFT::Algorithm::DIF4,    // 4
    ZFFT::Algorithm::DIT8,    // 8
    ZFFT::Algorithm::DIF4,    // 16
    ZFFT::Algorithm::DIT8,    // 32
    ZFFT::Algorithm::DIF8,    // 64
    ZFFT::Algorithm::DIF16,   // 128
    ZFFT::Algorithm::DIF8,    // 256
    ZFFT::Algorithm::DIF8,    // 512
    ZFFT::Algorithm::DIF4,    // 1024
    ZFFT::Algorithm::DIF16,   // 2048
    ZFFT::Algorithm::DIT8,    // 4096
    ZFFT::Algorithm::DIF8,    // 8192
    ZFFT::Algorithm::DIT8,    // 16384
    ZFFT::Algorithm::DIT8,    // 32768
    ZFFT::Algorithm::SixStep, // 65536
    ZFFT::Algorithm::DIT8,    // 131072
    ZFFT::Algorithm::SixStep, // 262144
    ZFFT::Algorithm::SixStep, // 524288
    ZFFT::Algorithm::SixStep, // 1048576
    ZFFT::Algorithm::SixStep, // 2097152
    ZFFT::Algorithm::SixStep, // 4194304
    ZFFT::Algorithm::SixStep, // 8388608
    ZFFT::Algorithm::SixStep, // 16777216
};

// From this complex size on, a Stockham class runs its parallel chains on
// the short table; below it, single-threaded chains on the long table.
namespace ZFFT_AVXDIF4 { constexpr int THRESHOLD = 8192; }
namespace ZFFT_AVXDIT4 { constexpr int THRESHOLD = 8192; }
namespace ZFFT_AVXDIF8 { constexpr int THRESHOLD = 2048; }
namespace ZFFT_AVXDIT8 { constexpr int THRESHOLD = 8192; }
namespace ZFFT_AVXDIF16 { constexpr int THRESHOLD = 4096; }

// A Stockham table of at least this many points is filled by a parallel loop.
constexpr int TWIDDLE_PARALLEL_FILL_FROM = 32768;

namespace ZFFT_SixStep {
// Sizes that run in parallel: even log_N from 14, odd log_N from 13.
constexpr int EVEN_PARALLEL_FROM = 14;
constexpr int ODD_PARALLEL_FROM = 13;
// From this odd log_N on, the eight sub-transforms run one after another
// on the calling thread, between two parallel regions.
constexpr int ODD_BLOCKS_ON_CALLER_FROM = 19;
// Tables at least this long are filled by a parallel loop.
constexpr long PARALLEL_FILL_FROM = 16384;
} // namespace ZFFT_SixStep

namespace ZFFT_MixedRadix {
// From this size on, transforms and the table fill run parallel.
constexpr long PARALLEL_FROM = 32768;
} // namespace ZFFT_MixedRadix

// From this real size on, the split and merge loops of the real transform
// run in parallel.
constexpr int REAL_PARALLEL_TRANSFORM_FROM = 32768;
// From this real size on, its weight table is filled by a parallel loop.
constexpr int REAL_PARALLEL_TABLE_FROM = 65536;

} // namespace ZFFT_VARIANT
