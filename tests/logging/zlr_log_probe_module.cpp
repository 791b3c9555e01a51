// Test-only module: logs one record through the kit's logger.
#include "zlruni_logger.h"

extern "C" __attribute__((visibility("default"))) void zlrLogProbe(unsigned severity,
                                                                   const char* text)
{
    ZLR_LOG(static_cast<zlr::UniLogSeverityLevel::T>(severity), "probe: " << text);
}
