#include "sim_frequency_series.h"

#include <algorithm>
#include <cmath>

namespace zelvar_sim {

std::vector<FrequencySeries::Point> FrequencySeries::points() const
{
    std::vector<Point> all;
    for (const CapturedBlock& block : blocks) {
        for (std::size_t i = 0; i < block.values.size(); ++i) {
            all.push_back({block.first_index + i, block.values[i]});
        }
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Point& a, const Point& b) { return a.index < b.index; });
    return all;
}

bool FrequencySeries::inIndexOrder() const
{
    for (std::size_t k = 1; k < blocks.size(); ++k) {
        const CapturedBlock& before = blocks[k - 1];
        if (blocks[k].first_index < before.first_index + before.values.size()) {
            return false;
        }
    }
    return true;
}

double FrequencySeries::timeOf(std::uint64_t index) const
{
    return static_cast<double>(index) * static_cast<double>(window_step) / sample_rate;
}

std::uint64_t windowStepOf(double input_rate, double output_rate)
{
    if (!(output_rate > 0.0) || !std::isfinite(input_rate / output_rate)) {
        return 0;
    }
    return static_cast<std::uint64_t>(std::llround(input_rate / output_rate));
}

} // namespace zelvar_sim
