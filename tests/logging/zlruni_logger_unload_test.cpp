// The kit is linked into a module that the host unloads and may load again.
// Nothing the logger leaves behind in the shared Boost.Log state may point
// into the unloaded code.
#include "zlruni_logger.h"

#include "zlr_log_capture.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace zlr {
namespace {

using ProbeFunction = void (*)(unsigned, const char*);

struct LoadedProbe {
    void* handle = nullptr;
    ProbeFunction probe = nullptr;
};

LoadedProbe loadProbe()
{
    LoadedProbe loaded;
    loaded.handle = dlopen(ZLR_LOG_PROBE_PATH, RTLD_NOW | RTLD_LOCAL);
    if (loaded.handle) {
        loaded.probe = reinterpret_cast<ProbeFunction>(dlsym(loaded.handle, "zlrLogProbe"));
    }
    return loaded;
}

bool probeIsResident()
{
    void* handle = dlopen(ZLR_LOG_PROBE_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (handle) {
        dlclose(handle);
    }
    return handle != nullptr;
}

TEST(LoggerInAModule, SurvivesUnloadAndReload)
{
    test::LogCapture capture;
    ASSERT_FALSE(probeIsResident());

    for (int round = 1; round <= 3; ++round) {
        LoadedProbe loaded = loadProbe();
        ASSERT_NE(loaded.handle, nullptr) << dlerror();
        ASSERT_NE(loaded.probe, nullptr) << dlerror();
        loaded.probe(round == 2 ? 6 : 1, ("round " + std::to_string(round)).c_str());
        ASSERT_EQ(dlclose(loaded.handle), 0) << dlerror();
        ASSERT_FALSE(probeIsResident()) << "the module stayed in memory after round " << round;
    }

    // The process's own logger still works once the module is gone.
    ZLR_LOG(UniLogSeverityLevel::Failure, "after unload");

    const std::vector<test::LogCapture::Message> expected = {
        {1, "probe: round 1"}, {6, "probe: round 2"}, {1, "probe: round 3"}, {5, "after unload"}};
    EXPECT_EQ(capture.messages(), expected);
}

} // namespace
} // namespace zlr
