// appendValues against the iterator's own value() and ++, over random runs
// of plain records, wider records, timestamped records and gaps, taken in
// random pieces: the same values bit for bit, the same count, and the
// iterator left at the same place.
#include "zlrfw_stream_iterator.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

using namespace zlr::framework;

// Ranges over `memory`, adjoining tick after tick; kinds chosen at random.
StreamIterator randomIterator(std::mt19937_64& random, std::vector<unsigned char>& memory)
{
    struct Plan {
        int kind; // 0 plain doubles, 1 doubles in 16-byte records, 2 timestamped, 3 gap
        std::uint64_t count;
    };
    std::vector<Plan> plans(1 + random() % 6);
    std::size_t bytes = 0;
    for (Plan& plan : plans) {
        plan = {static_cast<int>(random() % 4), 1 + random() % 40};
        bytes += plan.count * 16;
    }
    memory.assign(bytes, 0);
    StreamIterator iterator;
    std::uint64_t tick = random() % 1000;
    unsigned char* at = memory.data();
    for (const Plan& plan : plans) {
        const std::uint64_t stride = plan.kind == 0 ? 8 : 16;
        for (std::uint64_t i = 0; i < plan.count; ++i) {
            const double value = std::ldexp(static_cast<double>(random() >> 11), -20);
            std::memcpy(at + i * stride, &value, sizeof value);
            const std::uint64_t record_tick = tick + i;
            std::memcpy(at + i * stride + 8, &record_tick, sizeof record_tick);
        }
        const std::uint64_t span = plan.count * stride;
        switch (plan.kind) {
        case 0:
        case 1:
            iterator.addRange(SamplePosition::synchronous(at, stride, tick),
                              SamplePosition::synchronous(at + span, stride, tick + plan.count));
            break;
        case 2:
            iterator.addRange(SamplePosition::timestamped(at, stride, at + 8, stride),
                              SamplePosition::timestamped(at + span, stride, at + span + 8, stride));
            break;
        default:
            iterator.addRange(SamplePosition::gap(tick), SamplePosition::gap(tick + plan.count));
            break;
        }
        at += span;
        tick += plan.count;
    }
    return iterator;
}

TEST(StreamIterator, AppendValuesMatchesValueAndStepOverRandomRanges)
{
    std::mt19937_64 random(20261123);
    for (int trial = 0; trial < 2000; ++trial) {
        std::vector<unsigned char> memory;
        StreamIterator appending = randomIterator(random, memory);
        appending.setSkipGaps(random() % 2 == 0);
        StreamIterator stepping = appending;
        std::vector<double> appended;
        std::vector<double> stepped;
        while (stepping.valid() || appending.valid()) {
            const std::uint64_t count = random() % 50;
            std::uint64_t expected = 0;
            while (expected < count && stepping.valid()) {
                stepped.push_back(stepping.value());
                ++stepping;
                ++expected;
            }
            ASSERT_EQ(appending.appendValues(appended, count), expected) << "trial " << trial;
            ASSERT_EQ(appending.valid(), stepping.valid()) << "trial " << trial;
            if (stepping.valid()) {
                ASSERT_EQ(appending.timestamp(), stepping.timestamp()) << "trial " << trial;
            }
        }
        ASSERT_EQ(appended.size(), stepped.size());
        for (std::size_t i = 0; i < appended.size(); ++i) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(appended[i]),
                      std::bit_cast<std::uint64_t>(stepped[i]))
                << "trial " << trial << ", value " << i;
        }
    }
}

} // namespace
